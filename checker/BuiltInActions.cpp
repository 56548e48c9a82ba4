// SPDX-License-Identifier: MIT
#include "checker/BuiltInActions.h"

#include "keys/KeyRules.h"
#include "model/Explorer.h"
#include "model/KeyFacts.h"
#include "model/Witness.h"

#include <ls/Identifiers.h>

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

constexpr milliseconds tapTime{50};

bool isAnnouncement(const QString& action, Rule rule)
{
    switch (rule) {
    case Rule::MenuSentAtOnce:
    case Rule::LoneKeySent:
    case Rule::KeySentAtOnce:
    case Rule::TestEnds:
        return action == ls::KeyboardActionId::SingleKey;
    case Rule::FactoryResetCompletes:
        return action == ls::KeyboardActionId::FactoryReset;
    default:
        return false;
    }
}

template <typename List>
bool isAnnouncedBy(const QString& action, const List& effects)
{
    return std::any_of(effects.begin(), effects.end(),
                       [&](const Effect& effect) { return isAnnouncement(action, effect.rule); });
}

bool isAnnouncedLast(const QString& action, const Playback& playback)
{
    const auto& steps = playback.steps();
    return std::any_of(steps.begin(), steps.end(), [&](const PlayedStep& step) {
        return step.at == steps.last().at && isAnnouncedBy(action, step.effects);
    });
}

QStringList receiversOf(const QString& action, const PlayedStep& step)
{
    QStringList receivers;
    for (const Output& output : step.outputs) {
        if (output.kind == Output::Kind::Announce && output.text == action) {
            receivers.append(output.receiver);
        }
    }
    return receivers;
}

/// Plays a key alone until it causes `action`; nothing if it does not.
std::optional<BuiltInActions::Group> groupOf(const QString& action, Key key, const KeyModel& keyModel,
                                             State state)
{
    Playback playback(keyModel, state);
    playback.press(key);
    if (action == ls::KeyboardActionId::SingleKey) {
        playback.wait(tapTime);
        playback.release(key);
    }
    const milliseconds moved = playback.now();
    const auto isIn = [&](const PlayedStep& step) { return isAnnouncedBy(action, step.effects); };
    if (std::none_of(playback.steps().begin(), playback.steps().end(), isIn)) {
        const bool isTapped = action == ls::KeyboardActionId::SingleKey;
        playback.wait(isTapped ? KeyRules::singleKeyInterval : KeyRules::factoryResetHold);
    }
    const auto& steps = playback.steps();
    const auto step = std::find_if(steps.begin(), steps.end(), isIn);
    if (step == steps.end()) {
        return std::nullopt;
    }
    return BuiltInActions::Group{
        {Alphabet::nameOf(key)}, step->at - moved, receiversOf(action, *step), playback};
}

/// What `environment` allows. Without rows, because rows only silence these actions.
RowVerdict explore(const QString& action, const KeyModel& keyModel, State state,
                   const Environment& environment)
{
    const bool isOrvane = keyModel.lists().isOrvane;
    const KeyModel withoutRows(KeyLists{{}, {}, {}, isOrvane, {}});
    Explorer explorer(withoutRows, environment);
    RowVerdict verdict;
    bool isSeen = false;
    verdict.proof = explorer.explore([&](const Explorer::Transition& transition) {
        if (transition.after.situation.state != state || !isAnnouncedBy(action, transition.effects)) {
            return Explorer::Next::Continue;
        }
        isSeen = true;
        const Run run = explorer.pathThrough(transition);
        if (!isAnnouncedLast(action, Witness::play(keyModel, environment, run))) {
            return Explorer::Next::Continue;
        }
        verdict.kind = RowVerdict::Kind::Announced;
        verdict.witness = run;
        return Explorer::Next::Stop;
    });
    if (verdict.proof.isComplete && !isSeen) {
        verdict.kind = RowVerdict::Kind::Never;
    }
    return verdict;
}

} // namespace

QStringList BuiltInActions::all()
{
    return {ls::KeyboardActionId::FactoryReset, ls::KeyboardActionId::SingleKey};
}

std::vector<BuiltInActions::Group> BuiltInActions::groups(const QString& action, const KeyModel& keyModel,
                                                          State state)
{
    std::vector<Group> groups;
    for (const Key key : Alphabet::keys()) {
        const bool isPanelKey = Alphabet::isIdentified(key) && key != Key::None;
        const auto group = isPanelKey ? groupOf(action, key, keyModel, state) : std::nullopt;
        if (!group) {
            continue;
        }
        const auto same = std::find_if(groups.begin(), groups.end(), [&](const Group& other) {
            return other.delay == group->delay && other.receivers == group->receivers;
        });
        if (same == groups.end()) {
            groups.push_back(*group);
        } else {
            same->keys += group->keys;
        }
    }
    return groups;
}

RowVerdict BuiltInActions::search(const QString& action, const KeyModel& keyModel, State state)
{
    Environment person;
    person.kind = Environment::Kind::Person;
    person.devices = 1;
    const RowVerdict byPerson = explore(action, keyModel, state, person);
    if (byPerson.kind != RowVerdict::Kind::Never) {
        return byPerson;
    }
    const RowVerdict byAny = explore(action, keyModel, state, Environment());
    return byAny.kind == RowVerdict::Kind::Never ? byAny : byPerson;
}

} // namespace checker

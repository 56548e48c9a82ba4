// SPDX-License-Identifier: MIT
#include "workbench/card/CardGestures.h"

#include "keys/KeyRules.h"
#include "model/KeyFacts.h"
#include "model/Witness.h"
#include "workbench/card/CardSentences.h"

#include <ls/Identifiers.h>

#include <algorithm>
#include <iterator>

using namespace model;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds tapTime{50};

/// Calls `function` with each step and each of its effects.
template <typename Function>
void forEachEffect(const Playback& playback, Function function)
{
    for (const PlayedStep& step : playback.steps()) {
        for (const Effect& effect : step.effects) {
            function(step, effect);
        }
    }
}

bool has(const Playback& playback, Rule rule)
{
    bool isFound = false;
    forEachEffect(playback,
                  [&](const PlayedStep&, const Effect& effect) { isFound = isFound || effect.rule == rule; });
    return isFound;
}

KeyCardConsequence consequenceOf(const Playback& tap, Key key)
{
    if (has(tap, Rule::KeySentAtOnce)) {
        return KeyCardConsequence::NotSpokenAnnouncedAtRelease;
    }
    if (has(tap, Rule::MenuSentAtOnce)) {
        return KeyCardConsequence::MenuNotSpokenAnnouncedAtRelease;
    }
    if (has(tap, Rule::NameOmitted)) {
        return KeyCardConsequence::NotSpokenAnnouncedAfterWait;
    }
    return KeyFacts::hasName(key) ? KeyCardConsequence::SpokenAnnouncedAfterWait
                                  : KeyCardConsequence::SpokenAsZeroAnnouncedAfterWait;
}

/// The single keys that a gesture announces, in one order of releases or the other.
QVector<KeyCardConsequence> consequencesOf(List list, const QVector<Playback>& endings)
{
    bool isEachSent = false;
    bool isMenuSent = false;
    bool isKeySentAfterMenu = false;
    bool isLastSent = false;
    for (const Playback& ending : endings) {
        const bool hasMenu = has(ending, Rule::MenuSentAtOnce);
        const bool hasLoneKey = has(ending, Rule::LoneKeySent);
        isEachSent = isEachSent || has(ending, Rule::KeySentAtOnce);
        isMenuSent = isMenuSent || hasMenu;
        isKeySentAfterMenu = isKeySentAfterMenu || (hasMenu && hasLoneKey);
        isLastSent = isLastSent || (!hasMenu && hasLoneKey);
    }
    QVector<KeyCardConsequence> consequences;
    if (isEachSent) {
        consequences.append(KeyCardConsequence::EachRelease);
    }
    if (isMenuSent && list == List::Combinations) {
        consequences.append(KeyCardConsequence::Menu);
    } else if (isMenuSent) {
        consequences.append(isKeySentAfterMenu ? KeyCardConsequence::MenuUnlessAfterHelpAndNextKey
                                               : KeyCardConsequence::MenuUnlessAfterHelp);
    }
    if (isLastSent) {
        consequences.append(KeyCardConsequence::LastKey);
    }
    if (has(endings.first(), Rule::FactoryResetCompletes)) {
        consequences.append(KeyCardConsequence::FactoryReset);
    }
    return consequences;
}

/// The keys of a gesture: those of a combination are complete when they are released.
QStringList keysOf(List list, const Run& run)
{
    const auto kind = list == List::Combinations ? Input::Kind::Release : Input::Kind::Press;
    QStringList keys;
    for (const Input input : run.inputs) {
        if (input.kind == kind) {
            keys.append(Alphabet::nameOf(input.key()));
        }
    }
    return keys;
}

/// The presses of the keys that are still down after `run`.
QVector<Input> keysDownAfter(const Run& run)
{
    QVector<Input> down;
    for (const Input input : run.inputs) {
        if (input.kind == Input::Kind::Press) {
            down.append(input);
        } else if (input.kind == Input::Kind::Release) {
            down.removeOne(Input::press(input.key(), input.device));
        }
    }
    return down;
}

/// Releases the keys at once, because a long press without time repeats, and waits for all effects.
Playback ended(Playback playback, const QVector<Input>& releases)
{
    for (const Input press : releases) {
        playback.release(press.key(), press.device);
        playback.wait(tapTime);
    }
    playback.wait(KeyRules::singleKeyInterval);
    return playback;
}

QVector<RowId> announcedRows(const Playback& playback)
{
    QVector<RowId> rows;
    forEachEffect(playback, [&rows](const PlayedStep&, const Effect& effect) {
        if (effect.rule == Rule::Announces) {
            rows.append(effect.row);
        }
    });
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

QVector<RowId> common(const QVector<RowId>& a, const QVector<RowId>& b)
{
    QVector<RowId> rows;
    std::set_intersection(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(rows));
    return rows;
}

QVector<RowId> without(const QVector<RowId>& all, const QVector<RowId>& others)
{
    QVector<RowId> rows;
    std::set_difference(all.begin(), all.end(), others.begin(), others.end(), std::back_inserter(rows));
    return rows;
}

/// The entry that `playback` announces in the step with an effect of `rule`, or in any step without it.
KeyCardEntry entryOf(KeyCardKind kind, Key key, const Playback& playback, std::optional<Rule> rule = {})
{
    KeyCardEntry entry;
    entry.kind = kind;
    entry.keys = QStringList(Alphabet::nameOf(key));
    for (const PlayedStep& step : playback.steps()) {
        const bool isMeant =
            !rule || std::any_of(step.effects.begin(), step.effects.end(),
                                 [rule](const Effect& effect) { return effect.rule == *rule; });
        for (const Output& output : step.outputs) {
            if (isMeant && output.kind == Output::Kind::Announce) {
                entry.action = output.text;
                entry.receivers.append(output.receiver);
                entry.holdMs = rule ? int(step.at.count()) : 0;
            }
        }
    }
    return entry;
}

/// How often Menu directly follows Help.
int menusAfterHelp(const QStringList& keys)
{
    int count = 0;
    for (int i = 1; i < keys.size(); ++i) {
        count += keys.at(i) == ls::KeyId::Menu && keys.at(i - 1) == ls::KeyId::Help ? 1 : 0;
    }
    return count;
}

} // namespace

KeyCardKind CardGestures::kindOf(List list)
{
    switch (list) {
    case List::LongPresses:
        return KeyCardKind::Long;
    case List::Combinations:
        return KeyCardKind::Combination;
    case List::Shortcuts:
        break;
    }
    return KeyCardKind::Shortcut;
}

std::optional<KeyCardEntry> CardGestures::singleKey(Key key, State state) const
{
    Playback tap(m_model, state);
    tap.press(key);
    tap.wait(tapTime);
    tap.release(key);
    tap.wait(KeyRules::singleKeyInterval);
    KeyCardEntry entry = entryOf(KeyCardKind::Single, key, tap);
    entry.consequences = {consequenceOf(tap, key)};
    return entry.receivers.isEmpty() ? std::nullopt : std::optional(entry);
}

std::optional<KeyCardEntry> CardGestures::factoryReset(State state) const
{
    Playback hold(m_model, state);
    hold.press(KeyFacts::factoryReset);
    hold.wait(KeyRules::factoryResetHold);
    KeyCardEntry entry =
        entryOf(KeyCardKind::Hold, KeyFacts::factoryReset, hold, Rule::FactoryResetCompletes);
    entry.consequences =
        consequencesOf(List::LongPresses, {ended(hold, {Input::press(KeyFacts::factoryReset)})});
    entry.consequences.removeOne(KeyCardConsequence::FactoryReset); // the entry's own action
    return entry.receivers.isEmpty() ? std::nullopt : std::optional(entry);
}

KeyCardEntry CardGestures::gesture(RowId row, const RowVerdict& verdict)
{
    const Played& played = play(row.list, verdict);
    const KeyEntry& own = m_model.lists().row(row);
    KeyCardEntry entry;
    entry.kind = kindOf(row.list);
    entry.keys = played.keys;
    entry.holdMs = row.list == List::LongPresses ? played.completedAt : 0;
    entry.action = own.eAction();
    entry.receivers = QStringList(own.receiverService());
    entry.timesAnnounced = played.times.value(row, 1);
    entry.consequences = played.consequences;
    entry.rowNotes = played.notes;
    const QStringList ownKeys = own.isSequence() ? own.keys() : QStringList{own.firstKey(), own.lastKey()};
    if (menusAfterHelp(entry.keys) > menusAfterHelp(ownKeys)) {
        entry.rowNotes.append(QStringLiteral("Without Help before it, Menu is announced at once."));
    }
    entry.rowNotes += othersOf(row, played);
    return entry;
}

const CardGestures::Played& CardGestures::play(List list, const RowVerdict& verdict)
{
    const QVector<Input>& inputs = verdict.witness.inputs;
    QByteArray name(reinterpret_cast<const char*>(inputs.constData()), inputs.size() * int(sizeof(Input)));
    name.append(static_cast<char>(list)).append(static_cast<char>(verdict.witness.start));
    auto found = m_played.find(name);
    if (found == m_played.end()) {
        found = m_played.insert(name, played(list, verdict.proof.environment, verdict.witness));
    }
    return *found;
}

CardGestures::Played CardGestures::played(List list, const Environment& environment, const Run& run) const
{
    const Playback completed = Witness::play(m_model, environment, run);
    const milliseconds end = completed.steps().last().at;
    Played played;
    played.keys = keysOf(list, run);
    played.completedAt = int(end.count());
    forEachEffect(completed, [&](const PlayedStep& step, const Effect& effect) {
        if (step.at == end && effect.rule == Rule::Announces) {
            played.times[effect.row] += int(effect.count);
        } else if (step.at < end && effect.rule == Rule::CombinationCompletes && list == effect.row.list) {
            played.notes.append(
                QStringLiteral("Row %1 is complete with %2 and begins the sequence.")
                    .arg(QString::number(effect.row.index + 1), Alphabet::nameOf(effect.key)));
        }
    });
    const QVector<Input> down = keysDownAfter(run);
    const Playback lastFirst = ended(completed, QVector<Input>(down.crbegin(), down.crend()));
    const Playback firstFirst = ended(completed, down);
    played.consequences = consequencesOf(list, {lastFirst, firstFirst});
    played.rows = common(announcedRows(lastFirst), announcedRows(firstFirst));
    if (down.size() > 1) {
        const auto note = [&played](Input first, const Playback& ending) {
            played.rowsAfter.insert(Alphabet::nameOf(first.key()),
                                    without(announcedRows(ending), played.rows));
        };
        note(down.last(), lastFirst);
        note(down.first(), firstFirst);
    }
    return played;
}

QStringList CardGestures::othersOf(RowId row, const Played& played) const
{
    QStringList sentences;
    const auto add = [&](QVector<RowId> rows, const QString& releasedFirst) {
        rows.removeOne(row);
        QStringList actions;
        for (const RowId other : rows.mid(0, CardSentences::maxActions)) {
            actions.append(m_model.lists().row(other).eAction());
        }
        if (!actions.isEmpty()) {
            sentences.append(
                CardSentences::alsoAnnounced(actions, rows.size() - actions.size(), releasedFirst));
        }
    };
    add(played.rows, {});
    for (auto it = played.rowsAfter.begin(); it != played.rowsAfter.end(); ++it) {
        add(it.value(), it.key());
    }
    return sentences;
}

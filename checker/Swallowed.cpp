// SPDX-License-Identifier: MIT
#include "checker/Swallowed.h"

#include "checker/HiddenPairs.h"
#include "checker/OutputWords.h"
#include "checker/RowStates.h"
#include "keys/KeyRules.h"
#include "model/KeyFacts.h"

#include <ls/Identifiers.h>

#include <algorithm>

using namespace model;

namespace checker {

namespace {

bool isPerceived(const QVector<Output>& outputs)
{
    return std::any_of(outputs.begin(), outputs.end(), OutputWords::isPerceived);
}

QStringList textsOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(output.toText({}));
    }
    return texts;
}

/// Collects what is swallowed in a trial.
class Collector
{
public:
    explicit Collector(const Trial& trial) : m_trial(trial) {}

    QVector<Swallowed> collect();

private:
    using Kind = Swallowed::Kind;

    void look(int step, const Effect& effect);
    void lookAtRow(int step, const Effect& effect);
    void lookAtWaitingKey(int step, Key key);
    void add(Kind kind, int step, const Effect& effect)
    {
        m_found.append({kind, step, m_trial.occasionOf(step), effect.key, effect.row});
    }

    const Trial& m_trial;
    QVector<Swallowed> m_found;
};

QVector<Swallowed> Collector::collect()
{
    for (int step = 0; step < m_trial.steps().size(); ++step) {
        for (const Effect& effect : m_trial.steps().at(step).effects) {
            look(step, effect);
        }
    }
    // Another rule may do in the same moment what this one prevents.
    m_found.erase(
        std::remove_if(m_found.begin(), m_found.end(),
                       [this](const Swallowed& swallowed) { return swallowed.isMended(m_trial, m_trial); }),
        m_found.end());
    std::stable_sort(m_found.begin(), m_found.end(),
                     [](const Swallowed& a, const Swallowed& b) { return a.step < b.step; });
    return m_found;
}

void Collector::look(int step, const Effect& effect)
{
    const PlayedStep& played = m_trial.steps().at(step);
    const bool isOrvane = m_trial.keyModel().lists().isOrvane;
    // "Unknown" is the name of no key as well, and therefore never sent.
    if (effect.rule == Rule::KeyWaits && effect.key != Key::None) {
        lookAtWaitingKey(step, effect.key);
    } else if (effect.rule == Rule::StartupIgnores && played.input.kind == Input::Kind::Release) {
        add(Kind::Ignored, step, effect);
    } else if (effect.rule == Rule::NameSilenced && !KeyFacts::isSilent(effect.key, isOrvane)) {
        add(Kind::NotSpoken, step, effect);
    } else {
        lookAtRow(step, effect);
    }
}

void Collector::lookAtRow(int step, const Effect& effect)
{
    if (effect.rule == Rule::RefusesState) {
        const bool namesState = !RowStates::of(m_trial.keyModel().lists(), effect.row).isEmpty();
        add(namesState ? Kind::Refused : Kind::RefusedAlways, step, effect);
    } else if (effect.rule == Rule::DropsReceiver) {
        add(Kind::Dropped, step, effect);
    } else if (effect.rule == Rule::SequenceHides &&
               !HiddenPairs::of(m_trial.keyModel().lists(), m_trial.steps().at(step), effect).isEmpty()) {
        add(Kind::Hidden, step, effect);
    }
}

/// A key waits until it is sent or until another rule ends the wait.
void Collector::lookAtWaitingKey(int step, Key key)
{
    const auto ends = [](const Effect& effect) {
        return effect.rule == Rule::LoneKeySent || effect.rule == Rule::KeyReplaced ||
               effect.rule == Rule::KeysForgotten;
    };
    for (int later = step + 1; later < m_trial.steps().size(); ++later) {
        const auto& effects = m_trial.steps().at(later).effects;
        const auto end = std::find_if(effects.begin(), effects.end(), ends);
        if (end == effects.end()) {
            continue;
        }
        if (end->rule != Rule::LoneKeySent) {
            const Occasion occasion{m_trial.idOf(step), KeyRules::singleKeyInterval};
            m_found.append({Kind::NotSent, later, occasion, key, {List::LongPresses, -1}});
        }
        return;
    }
}

} // namespace

QVector<Swallowed> Swallowed::in(const Trial& trial)
{
    return Collector(trial).collect();
}

bool Swallowed::isMended(const Trial& original, const Trial& other) const
{
    const KeyLists& lists = original.keyModel().lists();
    const QVector<Output> outputs = other.outputsAt(occasion);
    const auto isAnnounced = [&outputs](auto isMeant) {
        return std::any_of(outputs.begin(), outputs.end(), [&](const Output& output) {
            return output.kind == Output::Kind::Announce && isMeant(output);
        });
    };
    switch (kind) {
    case Kind::NotSpoken:
    case Kind::Ignored:
        return isPerceived(outputs);
    case Kind::NotSent:
        return isAnnounced([&](const Output& output) {
            return output.text == ls::KeyboardActionId::SingleKey &&
                   output.keys == QStringList(Alphabet::nameOf(key));
        });
    case Kind::Refused:
        return isAnnounced([&](const Output& output) {
            return output.text == lists.row(row).eAction() &&
                   output.receiver == lists.row(row).receiverService();
        });
    case Kind::RefusedAlways:
    case Kind::Dropped:
    case Kind::Hidden:
        break;
    }
    return textsOf(outputs) != textsOf(original.outputsAt(occasion));
}

} // namespace checker

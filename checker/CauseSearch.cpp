// SPDX-License-Identifier: MIT
#include "checker/CauseSearch.h"

#include "checker/RowStates.h"
#include "keys/KeyRules.h"
#include "model/KeyFacts.h"

#include <QtAlgorithms>

#include <algorithm>

using namespace model;

namespace checker {

namespace {

constexpr int maxRounds = 100;
/// All subsets of larger sets would take too long.
constexpr int maxExhaustive = 8;

bool isCompletion(Rule rule)
{
    return rule == Rule::ShortcutCompletes || rule == Rule::CombinationCompletes ||
           rule == Rule::LongPressCompletes;
}

bool has(const PlayedStep& step, Rule rule)
{
    return std::any_of(step.effects.begin(), step.effects.end(),
                       [rule](const Effect& effect) { return effect.rule == rule; });
}

Edit withoutRow(RowId row)
{
    return {Edit::Kind::RemoveRow, row, {}, State::Undefined, {}};
}

Edit withoutSteps(const QVector<int>& steps)
{
    return {Edit::Kind::RemoveSteps, {List::LongPresses, -1}, steps, State::Undefined, {}};
}

/// Another state at an occasion.
Edit withState(const Occasion& occasion, State state)
{
    const QVector<int> steps = occasion.after ? QVector<int>() : QVector<int>{occasion.scriptStep};
    return {Edit::Kind::InsertState,
            {List::LongPresses, -1},
            steps,
            state,
            occasion.after.value_or(std::chrono::milliseconds::zero())};
}

/// The step of the playback that is the release of a script's step; -1 if there is none.
int releaseOf(const Trial& trial, int scriptStep)
{
    for (int step = 0; step < trial.steps().size(); ++step) {
        const PlayedStep& played = trial.steps().at(step);
        const bool isRelease =
            played.input.kind == Input::Kind::Release && played.origin != PlayedStep::Origin::Time;
        if (isRelease && trial.idOf(step) == scriptStep) {
            return step;
        }
    }
    return -1;
}

/// The rows to which `rule` was applied at an occasion.
QVector<Edit> rowsAt(const Trial& trial, const Swallowed& swallowed, Rule rule)
{
    QVector<Edit> edits;
    for (int step = 0; step < trial.steps().size(); ++step) {
        if (!trial.isIn(step, swallowed.occasion)) {
            continue;
        }
        for (const Effect& effect : trial.steps().at(step).effects) {
            if (effect.rule == rule && !edits.contains(withoutRow(effect.row))) {
                edits.append(withoutRow(effect.row));
            }
        }
    }
    return edits;
}

QVector<Edit> subset(const QVector<Edit>& edits, quint32 mask)
{
    QVector<Edit> chosen;
    for (int i = 0; i < edits.size(); ++i) {
        if (mask & (1U << i)) {
            chosen.append(edits.at(i));
        }
    }
    return chosen;
}

} // namespace

CauseSearch::CauseSearch(const KeyLists& lists, const KeyScript& script, int maxTrials)
    : m_lists(lists), m_script(script), m_original(lists, script), m_maxTrials(maxTrials)
{}

QVector<Swallowed> CauseSearch::swallowed() const
{
    QVector<Swallowed> all = Swallowed::in(m_original);
    for (Swallowed& swallowed : all) {
        if (swallowed.kind == Swallowed::Kind::Refused && otherState(swallowed).isEmpty() && !isExhausted()) {
            swallowed.kind = Swallowed::Kind::RefusedAlways;
        }
    }
    return all;
}

QVector<Edit> CauseSearch::causesOf(const Swallowed& swallowed) const
{
    QVector<Edit> edits;
    if (swallowed.kind == Swallowed::Kind::Ignored || swallowed.kind == Swallowed::Kind::Refused) {
        edits = otherState(swallowed);
        if (!edits.isEmpty() || swallowed.kind == Swallowed::Kind::Refused) {
            return edits;
        }
        // In Idle, a gesture may silence the key as well.
        edits.append(withState(swallowed.occasion, KeyFacts::idle));
    }
    for (int round = 0; round < maxRounds && !isExhausted(); ++round) {
        ++m_trials;
        const Trial trial(m_lists, m_script, edits);
        if (swallowed.isMended(m_original, trial)) {
            edits = smallest(swallowed, edits);
            return isExhausted() ? QVector<Edit>() : edits;
        }
        const int count = edits.size();
        const QVector<Edit> found = candidates(swallowed, trial);
        std::copy_if(found.begin(), found.end(), std::back_inserter(edits),
                     [&](const Edit& edit) { return !edits.contains(edit); });
        if (edits.size() == count) {
            break;
        }
    }
    return {};
}

bool CauseSearch::isMendedBy(const Swallowed& swallowed, const QVector<Edit>& edits) const
{
    if (isExhausted()) {
        return false;
    }
    ++m_trials;
    return swallowed.isMended(m_original, Trial(m_lists, m_script, edits));
}

/// The first state in which the expected happens.
QVector<Edit> CauseSearch::otherState(const Swallowed& swallowed) const
{
    const bool isRefused = swallowed.kind == Swallowed::Kind::Refused;
    QVector<State> states{KeyFacts::idle};
    states = isRefused ? RowStates::of(m_lists, swallowed.row) : states + Alphabet::states();
    for (const State state : qAsConst(states)) {
        const Edit edit = withState(swallowed.occasion, state);
        // No notification makes the state unknown.
        if (state != State::Undefined && isMendedBy(swallowed, {edit})) {
            return {edit};
        }
    }
    return {};
}

/// What prevents the expected in `trial`.
QVector<Edit> CauseSearch::candidates(const Swallowed& swallowed, const Trial& trial) const
{
    switch (swallowed.kind) {
    case Swallowed::Kind::NotSpoken:
    case Swallowed::Kind::Ignored: {
        const int release = releaseOf(trial, swallowed.occasion.scriptStep);
        return release == -1 ? QVector<Edit>() : gesturesBefore(swallowed, trial, release);
    }
    case Swallowed::Kind::NotSent:
        return candidatesOfWait(swallowed, trial);
    case Swallowed::Kind::RefusedAlways:
        return rowsAt(trial, swallowed, Rule::RefusesState);
    case Swallowed::Kind::Dropped:
        return rowsAt(trial, swallowed, Rule::DropsReceiver);
    case Swallowed::Kind::Hidden:
        return rowsAt(trial, swallowed, Rule::SequenceHides);
    case Swallowed::Kind::Refused:
        break;
    }
    return {};
}

/// A waiting key is not sent if another key is released meanwhile, if an action has used it up, or if the
/// state has changed.
QVector<Edit> CauseSearch::candidatesOfWait(const Swallowed& swallowed, const Trial& trial) const
{
    const int release = releaseOf(trial, swallowed.occasion.scriptStep);
    QVector<Edit> edits;
    QVector<Edit> stateChanges;
    for (int step = release + 1; release != -1 && step < trial.steps().size(); ++step) {
        const PlayedStep& played = trial.steps().at(step);
        if (played.at > trial.steps().at(release).at + *swallowed.occasion.after) {
            break;
        }
        if (played.input.kind == Input::Kind::ChangeState) {
            stateChanges.append(withoutSteps({trial.idOf(step)}));
        } else if (has(played, Rule::WindowOpens)) {
            edits.append(withoutKey(trial, step));
        } else if (has(played, Rule::LoneKeyDropped)) {
            return edits + stateChanges;
        } else if (has(played, Rule::LoneKeyUsedUp)) {
            return edits + gesturesBefore(swallowed, trial, step);
        }
    }
    return edits;
}

/// The sources of the mark "gesture seen" at the rule of `step` that depends on it.
QVector<Edit> CauseSearch::gesturesBefore(const Swallowed& swallowed, const Trial& trial, int step) const
{
    QVector<Edit> sources;
    Edit source;
    for (int i = 0; i <= step; ++i) {
        for (const Effect& effect : trial.steps().at(i).effects) {
            const bool isEnd = effect.rule == Rule::NameSilenced || effect.rule == Rule::LoneKeyUsedUp;
            if (i == step && isEnd) {
                return sources;
            }
            if (effect.rule == Rule::KeysForgotten) {
                sources.clear();
            } else if (isCompletion(effect.rule)) {
                source = withoutRow(effect.row);
            } else if (effect.rule == Rule::FactoryResetCompletes) {
                source = withoutFactoryReset(swallowed, trial, i);
            } else if (effect.rule == Rule::MarksGesture && !sources.contains(source)) {
                sources.append(source);
            }
        }
    }
    return {};
}

/// `step` is the end of the hold. The release of the key must stay if it is the one that is not spoken or
/// sent.
Edit CauseSearch::withoutFactoryReset(const Swallowed& swallowed, const Trial& trial, int step) const
{
    int press = step;
    while (press > 0 && !has(trial.steps().at(press), Rule::FactoryResetStarts)) {
        --press;
    }
    Edit edit = withoutKey(trial, press);
    if (edit.steps.contains(swallowed.occasion.scriptStep)) {
        edit.kind = Edit::Kind::ReleaseAtOnce;
        edit.steps = {trial.idOf(press), swallowed.occasion.scriptStep};
    }
    return edit;
}

/// The key of a press or release is not pressed at all. Presses of a key that is down do nothing, but would
/// without the first one.
Edit CauseSearch::withoutKey(const Trial& trial, int step) const
{
    const PlayedStep& played = trial.steps().at(step);
    if (played.origin != PlayedStep::Origin::Finger) {
        return withoutSteps({trial.idOf(step)});
    }
    const auto isOfKey = [&](int other, Input::Kind kind) {
        const PlayedStep& candidate = trial.steps().at(other);
        return candidate.origin == PlayedStep::Origin::Finger &&
               candidate.input == Input::of(kind, played.input.key(), played.input.device);
    };
    int press = step;
    while (press > 0 && !isOfKey(press, Input::Kind::Press)) {
        --press;
    }
    int release = press;
    while (release < trial.steps().size() && !isOfKey(release, Input::Kind::Release)) {
        ++release;
    }
    const int last = release < trial.steps().size() ? trial.idOf(release) : m_script.steps.size() - 1;
    QVector<int> ids;
    for (int id = trial.idOf(press); id <= last; ++id) {
        const ScriptStep& candidate = m_script.steps.at(id);
        const bool isMovement =
            candidate.kind == ScriptStep::Kind::Press || candidate.kind == ScriptStep::Kind::Release;
        if (isMovement && candidate.text == Alphabet::nameOf(played.input.key()) &&
            candidate.keyboard == played.input.device) {
            ids.append(id);
        }
    }
    return withoutSteps(ids);
}

QVector<Edit> CauseSearch::smallest(const Swallowed& swallowed, QVector<Edit> edits) const
{
    for (int i = edits.size() - 1; i >= 0; --i) {
        QVector<Edit> fewer = edits;
        fewer.removeAt(i);
        if (isMendedBy(swallowed, fewer)) {
            edits = fewer;
        }
    }
    if (edits.size() > maxExhaustive) {
        return edits;
    }
    // Although each edit is necessary, a much smaller set may do.
    const quint32 all = (1U << edits.size()) - 1;
    for (uint size = 1; size < uint(edits.size()); ++size) {
        for (quint32 mask = 1; mask < all; ++mask) {
            if (qPopulationCount(mask) == size && isMendedBy(swallowed, subset(edits, mask))) {
                return subset(edits, mask);
            }
        }
    }
    return edits;
}

} // namespace checker

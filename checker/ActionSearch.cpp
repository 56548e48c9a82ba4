// SPDX-License-Identifier: MIT
#include "checker/ActionSearch.h"

#include "checker/RowStates.h"

using namespace model;

namespace checker {

ActionSearch::ActionSearch(const KeyLists& lists, const Limits& limits) : m_lists(lists), m_limits(limits) {}

QVector<ActionWay> ActionSearch::waysTo(const QString& action, std::optional<State> state)
{
    QVector<ActionWay> ways;
    const QVector<RowId> rows = m_lists.ids();
    for (const RowId row : rows) {
        if (m_lists.row(row).eAction() != action) {
            continue;
        }
        const QVector<State> states = state ? QVector<State>{*state} : RowStates::of(m_lists, row);
        for (const State each : states) {
            ways.append(wayTo(row, each));
        }
        if (states.isEmpty()) {
            ways.append(wayTo(row, std::nullopt));
        }
    }
    return ways;
}

QStringList ActionSearch::actionsOf(const KeyLists& lists)
{
    QStringList actions;
    const QVector<RowId> rows = lists.ids();
    for (const RowId row : rows) {
        actions.append(lists.row(row).eAction());
    }
    actions.sort();
    actions.removeDuplicates();
    return actions;
}

ActionWay ActionSearch::wayTo(RowId row, std::optional<State> state)
{
    using Kind = Environment::Kind;
    const State meant = state.value_or(State::Undefined);
    const RowVerdict& steady = proofs(m_steady, Kind::Person, false).of(row, meant);
    if (steady.kind == RowVerdict::Kind::Announced) {
        return {row, state, steady, {}};
    }
    ActionWay way{row, state, proofs(m_changing, Kind::Person, true).of(row, meant), {}};
    if (way.verdict.kind == RowVerdict::Kind::Never) {
        const RowVerdict& simulated = proofs(m_services, Kind::Services, true).of(row, meant);
        if (simulated.kind == RowVerdict::Kind::Announced) {
            way.byServices = simulated.witness;
        }
    }
    return way;
}

/// Makes the proofs when they are needed first.
const RowProofs& ActionSearch::proofs(std::optional<RowProofs>& kept, Environment::Kind kind,
                                      bool stateChanges)
{
    if (!kept) {
        Environment environment;
        environment.kind = kind;
        environment.stateChanges = stateChanges;
        environment.keyboardTest = stateChanges;
        kept.emplace(m_lists, environment, m_limits);
    }
    return *kept;
}

} // namespace checker

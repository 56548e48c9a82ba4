// SPDX-License-Identifier: MIT
#pragma once

#include "model/RowProofs.h"

#include <optional>

namespace checker {

/// What is proved about an action in a state.
struct ActionWay
{
    /// The index is -1 for an action that the daemon announces without a row.
    model::RowId row{model::List::LongPresses, -1};
    /// Nothing if the row names no state; the verdict is then that of an unknown state.
    std::optional<model::State> state;
    model::RowVerdict verdict;
    /// A run of services that simulate keys, if no keys announce the action.
    std::optional<model::Run> byServices;
};

/// Searches for the shortest ways to the actions of rows. A way in which the state stays as it is is
/// preferred.
class ActionSearch
{
public:
    explicit ActionSearch(const model::KeyLists& lists, const model::Limits& limits = {});

    /// The ways to each row of the action, in the state or, without one, in each state that the row names.
    QVector<ActionWay> waysTo(const QString& action, std::optional<model::State> state);

    /// The actions of all rows, sorted and without duplicates.
    static QStringList actionsOf(const model::KeyLists& lists);

private:
    ActionWay wayTo(model::RowId row, std::optional<model::State> state);
    const model::RowProofs& proofs(std::optional<model::RowProofs>& kept, model::Environment::Kind kind,
                                   bool stateChanges);

    model::KeyLists m_lists;
    model::Limits m_limits;
    std::optional<model::RowProofs> m_steady;
    std::optional<model::RowProofs> m_changing;
    std::optional<model::RowProofs> m_services;
};

} // namespace checker

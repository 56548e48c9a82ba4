// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"
#include "model/KeyLists.h"

#include <QVector>

#include <array>

namespace model {

/// What is proved about one row in one state.
struct RowVerdict
{
    enum class Kind {
        /// The action is announced by `witness`.
        Announced,
        /// No run of the environment announces the action.
        Never,
        /// The search reached a limit, or found only runs that no real times fit.
        NotProved,
    };

    Kind kind = Kind::NotProved;
    /// The search that decided. For `Announced`, its environment may be a part of the requested one, for
    /// `Never` it may include more than that. Empty for a state that the row does not name: there, no search
    /// is needed.
    Proof proof;
    /// A shortest run in that environment.
    Run witness;
};

/// Decides for each row and each state whether the row's action is ever announced in that state.
///
/// Explores one recogniser at a time, which is exact for this question. For a person, first finds the rows
/// that no input announces, then searches with as few fingers and devices as possible.
class RowProofs
{
public:
    RowProofs(const KeyLists& lists, const Environment& environment, const Limits& limits = {});

    const RowVerdict& of(RowId row, State state) const;
    /// Whether the row is proved never to be announced, in any state.
    bool isNever(RowId row) const;
    /// All searches that were made.
    const QVector<Proof>& searches() const { return m_searches; }

private:
    class Search;
    using ByState = std::array<RowVerdict, maxStates>;

    void prove(List list);
    void look(const Environment& environment, bool confirms, Search& search);
    void lookThrough(const Environment& environment, Search& search);
    Environment anyInput() const;

    KeyModel m_model;
    Environment m_environment;
    Limits m_limits;
    std::array<QVector<ByState>, 3> m_verdicts;
    QVector<Proof> m_searches;
};

} // namespace model

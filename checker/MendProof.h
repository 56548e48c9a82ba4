// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"
#include "model/KeyLists.h"

#include <QSet>
#include <QVector>

namespace checker {

/// What the change of one list may do.
struct MendedRows
{
    model::List list = model::List::LongPresses;
    /// For each row of the new list, the row of the old one; -1 for a new row.
    QVector<int> origins;
    /// The rows of the new list that may do something else. All others keep their members.
    QSet<int> changing;
    /// The row of the new list that must be announced in at least one state; -1 if none must.
    int working = -1;
};

namespace MendProof {

/// Why the new lists do not differ from the old ones by `rows` alone, as a sentence without a full stop;
/// empty if they do. Proves for each other row that it is announced in the same states as before, and
/// compares both lists key by key: no announcement of another row comes, stays away or changes its place. The
/// recognisers do not read each other, so that the other lists need no search.
QString faultOf(const model::KeyLists& oldLists, const model::KeyLists& newLists, const MendedRows& rows);

/// The states in which a person can make the daemon announce the row.
QVector<model::State> statesOf(const model::KeyLists& lists, model::RowId row);

/// The rows that a person can make the daemon announce in at least one state.
QVector<int> workingOf(const model::KeyLists& lists, model::List list);

} // namespace MendProof

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/HidingRows.h"

#include <algorithm>

namespace checker {

using model::Environment;
using model::KeyLists;
using model::Limits;
using model::List;
using model::RowId;
using model::RowProofs;
using model::RowVerdict;
using model::State;

namespace {

QList<KeyEntry>& rowsOf(KeyLists& lists, List list)
{
    switch (list) {
    case List::LongPresses:
        return lists.longPresses;
    case List::Combinations:
        return lists.combinations;
    case List::Shortcuts:
        break;
    }
    return lists.shortcuts;
}

bool isAnnounced(const RowProofs& proofs, RowId id)
{
    const auto& states = model::Alphabet::states();
    return std::any_of(states.begin(), states.end(), [&](State state) {
        return proofs.of(id, state).kind == RowVerdict::Kind::Announced;
    });
}

/// The rows that the recogniser of the list may prefer.
QVector<int> candidatesFor(const KeyLists& lists, RowId id)
{
    const QList<KeyEntry>& rows = lists.rows(id.list);
    const KeyEntry& row = lists.row(id);
    QVector<int> candidates;
    for (int i = 0; i < rows.size(); ++i) {
        const bool hasSameFirst = rows.at(i).firstKey() == row.firstKey();
        const bool hasSameLast = rows.at(i).lastKey() == row.lastKey();
        const bool isCandidate = id.list == List::LongPresses    ? hasSameFirst
                                 : id.list == List::Combinations ? rows.at(i).isSequence()
                                                                 : hasSameFirst && hasSameLast;
        if (isCandidate && i != id.index) {
            candidates.append(i);
        }
    }
    return candidates;
}

} // namespace

QVector<RowId> HidingRows::of(const KeyLists& lists, RowId id, const Environment& environment, const Limits& limits)
{
    constexpr int maxTries = 3;
    const QVector<int> candidates = candidatesFor(lists, id).mid(0, maxTries);
    KeyLists rest = lists.only(id.list);
    RowId moved = id;
    QVector<RowId> removed;
    for (const int index : candidates) {
        const int shift = removed.size(); // the rows that are gone were ahead
        rowsOf(rest, id.list).removeAt(index - shift);
        moved.index -= index < id.index ? 1 : 0;
        removed.append({id.list, index});
        if (isAnnounced(RowProofs(rest, environment, limits), moved)) {
            return removed;
        }
    }
    return {};
}

bool HidingRows::isMovable(const KeyLists& lists, RowId hiding, RowId id, const RowProofs& proofs,
                           const Environment& environment, const Limits& limits)
{
    KeyLists changed = lists.only(hiding.list);
    QList<KeyEntry>& rows = rowsOf(changed, hiding.list);
    rows.move(hiding.index, rows.size() - 1);
    const RowProofs after(changed, environment, limits);
    for (int i = 0; i < rows.size(); ++i) {
        const int index = i == hiding.index ? rows.size() - 1 : i > hiding.index ? i - 1 : i;
        const RowId before{hiding.list, i};
        const bool mustWork = isAnnounced(proofs, before) || before == id;
        if (mustWork && !isAnnounced(after, {hiding.list, index})) {
            return false;
        }
    }
    return true;
}

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/HidingRows.h"

#include "checker/SearchWords.h"

#include <algorithm>

namespace checker {

using model::KeyLists;
using model::List;
using model::RowId;
using model::RowProofs;
using model::RowVerdict;
using model::State;

namespace {

/// A row alone is proved in milliseconds, a whole list in up to a second.
constexpr int maxProofs = 200;
constexpr size_t maxMoves = 5;

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
    return std::any_of(states.begin(), states.end(),
                       [&](State state) { return proofs.of(id, state).kind == RowVerdict::Kind::Announced; });
}

/// Whether the pair consists of the first key of the sequence and another of its keys.
bool interrupts(const KeyEntry& pair, const KeyEntry& sequence)
{
    return !pair.isSequence() && pair.firstKey() == sequence.firstKey() &&
           sequence.keys().contains(pair.lastKey());
}

/// The index of a row when the row `taken` has been put at the end of `count` rows.
int indexAfter(int index, int taken, int count)
{
    return index == taken ? count - 1 : index > taken ? index - 1 : index;
}

} // namespace

std::optional<RowId> HidingRows::hiding(RowId id)
{
    const auto preferred = preferredTo(id);
    return preferred && worksAlone(id) ? preferred : std::nullopt;
}

/// Of long presses with the same key, the last one counts. In the other lists, the first row that is
/// preferred counts.
std::optional<RowId> HidingRows::preferredTo(RowId id) const
{
    const QList<KeyEntry>& rows = m_lists.rows(id.list);
    const KeyEntry& row = m_lists.row(id);
    const bool isLongPress = id.list == List::LongPresses;
    const auto isPreferred = [&](const KeyEntry& other) {
        switch (id.list) {
        case List::LongPresses:
            return other.firstKey() == row.firstKey();
        case List::Combinations:
            return other.isSequence() || (row.isSequence() && interrupts(other, row));
        case List::Shortcuts:
            break;
        }
        return other.firstKey() == row.firstKey() && other.lastKey() == row.lastKey();
    };
    for (int i = isLongPress ? rows.size() - 1 : 0; i != id.index; i += isLongPress ? -1 : 1) {
        if (isPreferred(rows.at(i))) {
            return RowId{id.list, i};
        }
    }
    return std::nullopt;
}

bool HidingRows::worksAlone(RowId id)
{
    const KeyEntry& row = m_lists.row(id);
    const QStringList key = QStringList{KeyLists::sectionOf(id.list), row.validOnState()} + row.keys();
    const auto known = m_works.constFind(key);
    m_isExhausted = m_isExhausted || (known == m_works.cend() && m_works.size() >= maxProofs);
    if (known != m_works.cend() || m_isExhausted) {
        return known != m_works.cend() && *known;
    }
    KeyLists alone;
    alone.isOrvane = m_lists.isOrvane;
    rowsOf(alone, id.list).append(row);
    const bool works = isAnnounced(RowProofs(alone, m_environment, searchLimits), {id.list, 0});
    m_works.insert(key, works);
    return works;
}

bool HidingRows::isMovable(RowId hiding, RowId id)
{
    auto move = m_moves.find(hiding);
    if (move == m_moves.end()) {
        if (m_moves.size() >= maxMoves) {
            return false;
        }
        move = m_moves.emplace(hiding, moved(hiding)).first;
    }
    const int index = indexAfter(id.index, hiding.index, m_lists.rows(id.list).size());
    return !move->second.losesRows && isAnnounced(move->second.proofs, {id.list, index});
}

HidingRows::Move HidingRows::moved(RowId hiding) const
{
    KeyLists changed = m_lists.only(hiding.list);
    QList<KeyEntry>& rows = rowsOf(changed, hiding.list);
    rows.move(hiding.index, rows.size() - 1);
    Move move{RowProofs(changed, m_environment, searchLimits)};
    for (int i = 0; i < rows.size(); ++i) {
        const RowId after{hiding.list, indexAfter(i, hiding.index, rows.size())};
        move.losesRows |= isAnnounced(m_proofs, {hiding.list, i}) && !isAnnounced(move.proofs, after);
    }
    return move;
}

} // namespace checker

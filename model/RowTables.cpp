// SPDX-License-Identifier: MIT
#include "model/RowTables.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

namespace model {

namespace {

constexpr int noRow = -1;

RowTables::Delivery deliveryOf(const KeyLists& lists, RowId id)
{
    RowTables::Delivery delivery;
    delivery.isDropped = lists.row(id).receiverService() == vocabulary::undefined;
    delivery.isSingleKey = lists.row(id).eAction() == ls::KeyboardActionId::SingleKey;
    const QStringList states = lists.statesOf(id);
    delivery.total = static_cast<quint32>(states.size());
    for (const QString& name : states) {
        if (const auto state = Alphabet::stateOf(name)) {
            ++delivery.named[static_cast<size_t>(*state)];
        }
    }
    return delivery;
}

} // namespace

RowTables::RowTables(const KeyLists& lists)
{
    m_longPressOf.fill(noRow);
    m_combinationOpened.fill(noRow);
    m_shortcutOpened.fill(noRow);
    m_shortcutOf.fill(m_shortcutOpened);
    for (const RowId id : lists.ids()) {
        m_deliveries[static_cast<size_t>(id.list)].append(deliveryOf(lists, id));
    }
    addLongPresses(lists);
    addCombinations(lists);
    addShortcuts(lists);
}

const RowTables::Delivery& RowTables::delivery(RowId row) const
{
    return m_deliveries[static_cast<size_t>(row.list)].at(row.index);
}

/// Of several rows for a key, the last one counts.
void RowTables::addLongPresses(const KeyLists& lists)
{
    for (int i = 0; i < lists.longPresses.size(); ++i) {
        const KeyEntry& row = lists.longPresses.at(i);
        m_milliseconds.append(qMax(0, row.timeout()));
        if (const auto key = Alphabet::keyOf(row.firstKey())) {
            m_longPressOf[slot(*key)] = i;
        }
    }
}

/// Released keys are compared only with the first row of three or more keys: a second such row sees a key
/// only after the first row has matched and emptied the sequence, and a single key never matches it.
void RowTables::addCombinations(const KeyLists& lists)
{
    for (int i = 0; i < lists.combinations.size(); ++i) {
        const KeyEntry& row = lists.combinations.at(i);
        const auto first = Alphabet::keyOf(row.firstKey());
        if (first && m_combinationOpened[slot(*first)] == noRow) {
            m_combinationOpened[slot(*first)] = i;
        }
        if (!row.isSequence()) {
            addPair(row, i);
        } else if (m_sequences.size() < 2) {
            m_sequences.append(i);
        }
    }
    if (!m_sequences.isEmpty()) {
        const QStringList keys = lists.combinations.at(m_sequences.first()).keys();
        for (const QString& key : keys) {
            m_sequence.append(Alphabet::keyOf(key));
        }
    }
}

void RowTables::addPair(const KeyEntry& row, int index)
{
    const auto first = Alphabet::keyOf(row.firstKey());
    const auto last = Alphabet::keyOf(row.lastKey());
    if (first && last && m_sequences.size() < 2) {
        ByEnds& rows = m_sequences.isEmpty() ? m_ahead : m_behind;
        rows[slot(*first)][slot(*last)].append(index);
    }
}

/// Of several rows with the same first and last key, the first one counts.
void RowTables::addShortcuts(const KeyLists& lists)
{
    for (int i = lists.shortcuts.size() - 1; i >= 0; --i) {
        const auto first = Alphabet::keyOf(lists.shortcuts.at(i).firstKey());
        const auto last = Alphabet::keyOf(lists.shortcuts.at(i).lastKey());
        if (first) {
            m_shortcutOpened[slot(*first)] = i;
        }
        if (first && last) {
            m_shortcutOf[slot(*first)][slot(*last)] = i;
        }
    }
}

} // namespace model

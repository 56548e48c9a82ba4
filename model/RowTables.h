// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"
#include "model/KeyLists.h"

#include <QVector>

#include <array>

namespace model {

/// The key lists, indexed by keys: which rows a key opens, completes or arms. The time of a lookup does not
/// depend on the number of rows.
class RowTables
{
public:
    /// What happens to a row's action.
    struct Delivery
    {
        /// How often the row names each state, and the number of all states that it names.
        std::array<quint32, maxStates> named{};
        quint32 total = 0;
        /// Whether its receiver is "Undefined".
        bool isDropped = false;
        /// Whether its action is that of single keys, which does not count as a gesture.
        bool isSingleKey = false;
    };

    explicit RowTables(const KeyLists& lists);

    /// Rows are indices in their list; -1 means that there is no row.
    int shortcutOpenedBy(Key key) const { return m_shortcutOpened[slot(key)]; }
    int shortcutOf(Key held, Key key) const { return m_shortcutOf[slot(held)][slot(key)]; }
    int longPressOf(Key key) const { return m_longPressOf[slot(key)]; }
    int combinationOpenedBy(Key key) const { return m_combinationOpened[slot(key)]; }
    /// The rows of one and two keys before the first row of three or more keys.
    const QVector<int>& pairsAhead(Key first, Key key) const { return m_ahead[slot(first)][slot(key)]; }
    /// Likewise, between the first two rows of three or more keys.
    const QVector<int>& pairsBehind(Key first, Key key) const { return m_behind[slot(first)][slot(key)]; }
    /// The first two rows of three or more keys.
    int firstSequence() const { return m_sequences.value(0, -1); }
    int secondSequence() const { return m_sequences.value(1, -1); }
    /// The keys of the first one; nothing for a name that is not a key.
    const QVector<std::optional<Key>>& sequence() const { return m_sequence; }

    const Delivery& delivery(RowId row) const;
    /// The time of a long-press row.
    int milliseconds(int longPress) const { return m_milliseconds.at(longPress); }

private:
    using ByKey = std::array<int, maxKeys>;
    using ByEnds = std::array<std::array<QVector<int>, maxKeys>, maxKeys>;

    static constexpr size_t slot(Key key) { return static_cast<size_t>(key); }
    void addLongPresses(const KeyLists& lists);
    void addCombinations(const KeyLists& lists);
    void addShortcuts(const KeyLists& lists);
    void addPair(const KeyEntry& row, int index);

    ByKey m_longPressOf;
    ByKey m_combinationOpened;
    ByKey m_shortcutOpened;
    std::array<ByKey, maxKeys> m_shortcutOf;
    ByEnds m_ahead;
    ByEnds m_behind;
    QVector<int> m_sequences; // at most two
    QVector<std::optional<Key>> m_sequence;
    std::array<QVector<Delivery>, 3> m_deliveries;
    QVector<int> m_milliseconds;
};

} // namespace model

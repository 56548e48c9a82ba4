// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QList>
#include <QStringList>
#include <QVector>

namespace model {

/// One of the three key lists, each of which has a recogniser.
enum class List : quint8 { LongPresses, Combinations, Shortcuts };

/// A row of the key lists; `index` counts from 0 in its list.
struct RowId
{
    List list = List::LongPresses;
    int index = 0;

    friend bool operator==(RowId a, RowId b) { return a.list == b.list && a.index == b.index; }
    friend bool operator<(RowId a, RowId b) { return a.list != b.list ? a.list < b.list : a.index < b.index; }
};

/// The rows of the three lists, as the daemon's loader returns them, and the model of the embosser.
struct KeyLists
{
    QList<KeyEntry> longPresses;
    QList<KeyEntry> combinations;
    QList<KeyEntry> shortcuts;
    bool isOrvane = false;

    const QList<KeyEntry>& rows(List list) const;
    const KeyEntry& row(RowId id) const { return rows(id.list).at(id.index); }
    /// All rows, list by list.
    QVector<RowId> ids() const;
    /// The same lists with only the rows of `list`.
    KeyLists only(List list) const;
    /// The states that the row names, as the daemon compares them with the current one.
    QStringList statesOf(RowId id) const;
};

} // namespace model

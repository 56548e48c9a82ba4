// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QStringList>
#include <QVector>

namespace model {

/// One of the three key lists, each of which has a recogniser.
enum class List : quint8 { LongPresses, Combinations, Shortcuts };
constexpr List allLists[] = {List::LongPresses, List::Combinations, List::Shortcuts};

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
    /// The lists whose files have no readable list; they have no rows.
    QVector<List> unreadable = {};

    /// Reads the rows from the contents of the files, by file names, with the daemon's own loader, whose log
    /// lines are suppressed. A missing file counts as unreadable.
    static KeyLists read(const QMap<QString, QByteArray>& files, bool isOrvane);
    /// The name of the file that holds the rows of `list`.
    static const QString& fileOf(List list);
    /// The name of the section of that file.
    static QString sectionOf(List list);

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

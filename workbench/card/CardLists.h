// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/// The rows of the key lists, read from the contents of the files by the daemon's own loader.
struct CardLists
{
    QList<KeyEntry> longPresses;
    QList<KeyEntry> combinations;
    QList<KeyEntry> shortcuts;
    /// A sentence for each unreadable file.
    QStringList notes;

    /// `files` maps file names to contents; a missing file counts as unreadable.
    static CardLists read(const QMap<QString, QByteArray>& files);
};

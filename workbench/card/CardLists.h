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
    /// A sentence for each file that has no rows because it cannot be read.
    QStringList notes;

    /// `files` are contents by file names; a name that is not there is a file that cannot be read.
    static CardLists read(const QMap<QString, QByteArray>& files);
};

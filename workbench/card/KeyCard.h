// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/CardTypes.h"

#include <QByteArray>
#include <QMap>

/// The actions that keys can perform in each state, according to the daemon's handling of its key lists.
/// Excludes actions that need more than keys, such as a change of state, a command or the keyboard test.
struct KeyCard
{
    QString model;
    /// The states of the device, then the state "Undefined" if a row contains it.
    QVector<KeyCardState> states;
    QVector<KeyCardDeadRow> deadRows;
    /// Sentences about unreadable files.
    QStringList notes;

    /// `keyLists` maps the names of the key-list files to their contents; any model other than "Orvane"
    /// counts as Pellit. Not thread-safe, because it temporarily silences the log of the process.
    static KeyCard from(const QMap<QString, QByteArray>& keyLists, const QString& model);
};

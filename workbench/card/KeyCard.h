// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/CardTypes.h"

#include <QByteArray>
#include <QMap>

/// What people can really do with the keys in each state, as the daemon takes the rows of its key lists. Left
/// out is what needs more than keys: a change of state meanwhile, a command, the keyboard test.
struct KeyCard
{
    QString model;
    /// The states of the device; the state "Undefined" follows them when a row names it.
    QVector<KeyCardState> states;
    QVector<KeyCardNever> never;
    /// Sentences about files that cannot be read.
    QStringList notes;

    /// `keyLists` are the contents of the key-list files by their names; any model but "Orvane" counts as
    /// Pellit. For the main thread only, for it keeps the log of the process quiet meanwhile.
    static KeyCard from(const QMap<QString, QByteArray>& keyLists, const QString& model);
};

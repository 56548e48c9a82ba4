// SPDX-License-Identifier: MIT
#pragma once

#include "card/CardTypes.h"

#include <QByteArray>
#include <QMap>

namespace model {
struct KeyLists;
}

/// The actions that keys can perform in each state, as the model of the keys proves them. Excludes actions
/// that need more than keys, such as a change of state, a command or the keyboard test.
struct KeyCard
{
    QString model;
    /// The states of the device, then the state "Undefined" if a row contains it.
    QVector<KeyCardState> states;
    QVector<KeyCardDeadRow> deadRows;
    /// What the proofs assume: "a person with 2 fingers, ...".
    QString environment;
    /// Sentences about unreadable files and about rows that are not proved to work or not.
    QStringList notes;
    /// Whether each row is proved to work or not.
    bool isProved = true;

    /// `keyLists` maps the names of the key-list files to their contents; any model other than "Orvane"
    /// counts as Pellit. Not thread-safe, because it temporarily silences the log of the process.
    static KeyCard from(const QMap<QString, QByteArray>& keyLists, const QString& model);
    /// Thread-safe. Takes milliseconds for usual lists; the limits of the searches bound the time for others.
    static KeyCard of(const model::KeyLists& lists);
};

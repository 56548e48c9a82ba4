// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

enum class KeyCardKind { Single, Long, Combination, Shortcut, Hold };

/// One thing that can be done with the keys in a state, and what comes of it.
struct KeyCardEntry
{
    KeyCardKind kind = KeyCardKind::Single;
    /// The keys to press, in their order.
    QStringList keys;
    /// How long the key is held, from its press; 0 where that does not matter.
    int holdMs = 0;
    QString action;
    /// In the order of the announcements.
    QStringList receivers;
    /// Sentences on what else happens.
    QStringList notes;

    /// What to do, as a sentence.
    QString how() const;
};

/// What can be done in one state.
struct KeyCardState
{
    QString state;
    QVector<KeyCardEntry> entries;
    QStringList notes;
};

/// A row of a key list that no keys can complete as long as the state stays as it is.
struct KeyCardNever
{
    KeyCardKind kind = KeyCardKind::Long;
    /// Counted from 1 in the row's own list.
    int row = 0;
    QStringList keys;
    QString action;
    QString receiver;
    QString validOnState;
    /// A sentence.
    QString why;
};

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
    /// docs/key-card.md describes the object.
    QJsonObject toJson() const;
};

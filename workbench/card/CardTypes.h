// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

enum class KeyCardKind { Single, Long, Combination, Shortcut, Hold };

/// What else happens when the keys of an entry are pressed.
enum class KeyCardConsequence {
    /// Of a single key: whether its name is spoken, and when it is announced.
    NotSpokenAnnouncedAtRelease,
    MenuNotSpokenAnnouncedAtRelease,
    NotSpokenAnnouncedAfterWait,
    SpokenAnnouncedAfterWait,
    SpokenAsZeroAnnouncedAfterWait,
    /// Of other entries: the single keys that are announced as well.
    EachRelease,
    Menu,
    MenuUnlessAfterHelp,
    MenuUnlessAfterHelpAndNextKey,
    LastKey
};

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
    int timesAnnounced = 1;
    QVector<KeyCardConsequence> consequences;
    /// Sentences about the row that the entry comes from.
    QStringList rowNotes;
};

/// What can be done in one state.
struct KeyCardState
{
    QString state;
    QVector<KeyCardEntry> entries;
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

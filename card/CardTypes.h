// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

enum class KeyCardKind { Single, Long, Combination, Shortcut, Hold };

/// A further effect of pressing the keys of an entry.
enum class KeyCardConsequence {
    /// For a single key: whether its name is spoken, and when it is announced.
    NotSpokenAnnouncedAtRelease,
    MenuNotSpokenAnnouncedAtRelease,
    NotSpokenAnnouncedAfterWait,
    SpokenAnnouncedAfterWait,
    SpokenAsZeroAnnouncedAfterWait,
    /// For other entries: the single keys that are also announced.
    EachRelease,
    Menu,
    MenuUnlessAfterHelp,
    MenuUnlessAfterHelpAndNextKey,
    LastKey,
    /// For a long hold of FactoryReset.
    FactoryReset
};

/// One action that the keys can perform in a state.
struct KeyCardEntry
{
    KeyCardKind kind = KeyCardKind::Single;
    /// In the order of pressing.
    QStringList keys;
    /// How long to hold the key; 0 if this does not matter.
    int holdMs = 0;
    QString action;
    /// In the order of the announcements.
    QStringList receivers;
    int timesAnnounced = 1;
    QVector<KeyCardConsequence> consequences;
    /// Sentences about the entry's row.
    QStringList rowNotes;
};

struct KeyCardState
{
    QString state;
    QVector<KeyCardEntry> entries;
};

/// A row of a key list that is proved never to be announced in the environment of the card.
struct KeyCardDeadRow
{
    KeyCardKind kind = KeyCardKind::Long;
    /// Counted from 1 within its list.
    int row = 0;
    QStringList keys;
    QString action;
    QString receiver;
    QString validOnState;
    /// A sentence.
    QString why;
    /// The extent of the proof.
    quint64 situations = 0;
    quint64 steps = 0;
};

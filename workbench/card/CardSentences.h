// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/KeyCard.h"

/// The sentences of key cards, the same wherever a card is shown.
namespace CardSentences {

/// "single", "long", "combination", "shortcut" or "hold".
QString nameOf(KeyCardKind kind);

/// What to do. Of a single key, `keys` may be several to choose from.
QString how(KeyCardKind kind, const QStringList& keys, int holdMs);
/// "ACTION to RECEIVER and RECEIVER."
QString outcome(const QString& action, const QStringList& receivers);
/// The head of a row that never works: which one it is, and what it was to do.
QString rowThatFails(const KeyCardNever& row);

/// Notes of a single key.
QStringList singleNotes(const QString& key, const QString& state, bool isOrvane);
/// Notes of an entry that is none: the single keys that are announced besides, and when it comes several
/// times.
QStringList entryNotes(const KeyCardEntry& entry, const QString& state, int timesAnnounced);
QStringList stateNotes(const KeyCardState& state);

} // namespace CardSentences

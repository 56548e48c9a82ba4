// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/CardTypes.h"

/// The sentences of key cards, the same wherever a card is shown.
namespace CardSentences {

/// "single", "long", "combination", "shortcut" or "hold".
QString nameOf(KeyCardKind kind);

/// What to do. The keys of a single key may be several to choose from.
QString how(const KeyCardEntry& entry);
/// "ACTION to RECEIVER and RECEIVER."
QString outcome(const QString& action, const QStringList& receivers);
/// What else happens, a sentence each.
QStringList notesOf(const KeyCardEntry& entry);
QStringList notesOf(const KeyCardState& state);

/// The head of a row that never works: which one it is, and what it was to do.
QString rowThatFails(const KeyCardNever& row);

} // namespace CardSentences

// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/CardTypes.h"

/// The sentences of key cards in all formats.
namespace CardSentences {

/// "single", "long", "combination", "shortcut" or "hold".
QString nameOf(KeyCardKind kind);

/// What to do. An entry for single keys may have several keys to choose from.
QString how(const KeyCardEntry& entry);
/// "ACTION to RECEIVER and RECEIVER."
QString outcome(const QString& action, const QStringList& receivers);
/// A sentence for each further effect.
QStringList notesOf(const KeyCardEntry& entry);
QStringList notesOf(const KeyCardState& state);

/// The number, content and outcome of a row that never works.
QString describe(const KeyCardDeadRow& row);

} // namespace CardSentences

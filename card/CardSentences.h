// SPDX-License-Identifier: MIT
#pragma once

#include "card/CardTypes.h"
#include "model/KeyLists.h"

/// The sentences of key cards in all formats.
namespace CardSentences {

/// "single", "long", "combination", "shortcut" or "hold".
QString nameOf(KeyCardKind kind);

/// The entries, in which single keys with the same outcome are one entry with several keys.
QVector<KeyCardEntry> withSingleKeysJoined(const QVector<KeyCardEntry>& entries);

/// What to do. An entry for single keys may have several keys to choose from.
QString how(const KeyCardEntry& entry);
/// "ACTION to RECEIVER and RECEIVER."
QString outcome(const QString& action, const QStringList& receivers);
/// How many actions `alsoAnnounced` takes.
constexpr int maxActions = 3;
/// Says that `actions` and `others` more are also announced. If `releasedFirst` is a key, they depend on it.
QString alsoAnnounced(const QStringList& actions, int others, const QString& releasedFirst);
/// A sentence for each further effect.
QStringList notesOf(const KeyCardEntry& entry);
QStringList notesOf(const KeyCardState& state);

/// The number, content and outcome of a row that never works.
QString describe(const KeyCardDeadRow& row);
/// What the proofs of such rows assume.
QString proof(const QString& environment);
/// Says that `count` rows of `list`, of which `first` is one, counted from 1, are not proved to work or not.
QString notProved(model::List list, int count, int first);

} // namespace CardSentences

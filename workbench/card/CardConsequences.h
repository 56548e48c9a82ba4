// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/CardTypes.h"

/// What the router does with the single keys of an entry.
namespace CardConsequences {

KeyCardConsequence ofSingleKey(const QString& key, const QString& state, bool isOrvane);
/// For an entry that is not a single key; its own consequences are not looked at.
QVector<KeyCardConsequence> ofGesture(const KeyCardEntry& entry, const QString& state);

} // namespace CardConsequences

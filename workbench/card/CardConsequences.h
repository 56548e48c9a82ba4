// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/CardTypes.h"

/// How the router handles the single keys of an entry.
namespace CardConsequences {

KeyCardConsequence ofSingleKey(const QString& key, const QString& state, bool isOrvane);
/// For an entry that is not a single key; ignores `entry.consequences`.
QVector<KeyCardConsequence> ofGesture(const KeyCardEntry& entry, const QString& state);

} // namespace CardConsequences

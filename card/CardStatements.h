// SPDX-License-Identifier: MIT
#pragma once

#include "card/CardTypes.h"

/// Key cards as steps of key scripts.
namespace CardStatements {

/// The statements that press the keys of an entry on a panel whose keys are all up.
QStringList of(const KeyCardEntry& entry);

} // namespace CardStatements

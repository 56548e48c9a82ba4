// SPDX-License-Identifier: MIT
#pragma once

#include "tests/card/CardDevice.h"

/// Key lists for tests of the card.
namespace CardKeyLists {

/// The key lists of `data/`.
KeyLists installed();
/// Named lists in which rows affect each other. Each action identifies one row.
QMap<QString, KeyLists> odd();
/// The odd and the installed lists.
QMap<QString, KeyLists> all();

} // namespace CardKeyLists

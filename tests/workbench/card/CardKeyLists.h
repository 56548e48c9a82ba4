// SPDX-License-Identifier: MIT
#pragma once

#include "tests/workbench/card/CardDevice.h"

/// Key lists for the tests of the card.
namespace CardKeyLists {

/// Those of `data/`.
KeyLists installed();
/// Lists in which rows get in each other's way, by a name that says how. Each action stands for one row.
QMap<QString, KeyLists> odd();
/// The same and the installed ones.
QMap<QString, KeyLists> all();

} // namespace CardKeyLists

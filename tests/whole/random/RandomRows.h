// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"
#include "tests/whole/random/Dice.h"

/// Rolls key lists, odd rows among them.
namespace RandomRows {

/// Up to six rows of each kind, and at least one row. Each action stands for one row, unless the row is there
/// twice.
QVector<KeyRow> roll(Dice& dice);

/// A key of the few that scripts and rows are mostly about.
QString commonKey(Dice& dice);
/// Any key that the panel has, or a common one.
QString anyKey(Dice& dice);

} // namespace RandomRows

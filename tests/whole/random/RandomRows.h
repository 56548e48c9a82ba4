// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"
#include "tests/whole/random/Dice.h"

/// Generates random key lists, including unusual rows.
namespace RandomRows {

/// Up to six rows of each kind, and at least one row. Each action identifies one row, except for duplicate
/// rows.
QVector<KeyRow> roll(Dice& dice);

/// One of the few keys that most scripts and rows use.
QString commonKey(Dice& dice);
/// Any key of the panel, or a common one.
QString anyKey(Dice& dice);

} // namespace RandomRows

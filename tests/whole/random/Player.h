// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Play.h"

/// Plays each script on a new device, on the virtual clock.
namespace Player {

/// Plays `script` to its end.
Play play(const KeyScript& script);
/// Likewise, advancing the clock in many small, uneven pieces.
Play playInPieces(const KeyScript& script, quint64 seed);

} // namespace Player

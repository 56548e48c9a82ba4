// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Play.h"

/// Plays scripts on a device of their own, on the virtual clock.
namespace Player {

/// Plays `script` to its end.
Play play(const KeyScript& script);
/// The same, with the clock moved on in many small and uneven pieces.
Play playInPieces(const KeyScript& script, quint64 seed);

} // namespace Player

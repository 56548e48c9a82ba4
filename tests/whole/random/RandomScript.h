// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Generates random key scripts.
namespace RandomScript {

/// The script of `seed`, with 5 to `maxActions` gestures, changes of state, commands and waits; independent
/// of compiler and library.
KeyScript roll(quint64 seed, int maxActions = 60);

} // namespace RandomScript

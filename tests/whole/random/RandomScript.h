// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Rolls whole key scripts.
namespace RandomScript {

/// The script of `seed`: always the same, with every compiler and library.
KeyScript roll(quint64 seed);

} // namespace RandomScript

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Generates random key scripts.
namespace RandomScript {

/// The script of `seed`, independent of compiler and library.
KeyScript roll(quint64 seed);

} // namespace RandomScript

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <functional>

/// Looks for the shortest script that still shows a fault.
namespace Shrinker {

using Shows = std::function<bool(const KeyScript&)>;

/// Takes steps and rows out of `script` and shortens its waits as long as `shows` stays true; of what comes
/// back, nothing more can be left out. One row always stays, because the installed lists count without any.
KeyScript shrink(const KeyScript& script, const Shows& shows);

} // namespace Shrinker

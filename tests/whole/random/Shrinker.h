// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <functional>

/// Minimises a script that shows a fault.
namespace Shrinker {

using Shows = std::function<bool(const KeyScript&)>;

/// Removes steps and rows of `script` and shortens its waits while `shows` remains true, until nothing more
/// can be removed. One row always remains, because without rows the installed lists apply.
KeyScript shrink(const KeyScript& script, const Shows& shows);

} // namespace Shrinker

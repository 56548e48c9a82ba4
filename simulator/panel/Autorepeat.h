// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

/// When the kernel repeats a key that is held: the times with which it makes an input device.
namespace Autorepeat {

constexpr std::chrono::milliseconds delay{250};
constexpr std::chrono::milliseconds period{33};

} // namespace Autorepeat

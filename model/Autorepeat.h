// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

/// The kernel's default autorepeat times for a new input device.
namespace Autorepeat {

constexpr std::chrono::milliseconds delay{250};
constexpr std::chrono::milliseconds period{33};

} // namespace Autorepeat

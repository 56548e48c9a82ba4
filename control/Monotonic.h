// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include <time.h>

namespace control::Monotonic {

/// The time on the clock with which the kernel stamps the records of input devices.
inline std::chrono::microseconds now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::seconds(time.tv_sec) +
                                                                 std::chrono::nanoseconds(time.tv_nsec));
}

} // namespace control::Monotonic

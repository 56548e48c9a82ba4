// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>

/// Times in words.
namespace checker::Times {

/// "2.25 s".
QString duration(std::chrono::milliseconds time);
/// The time since the start, in seconds, right-aligned for columns: "   0.050".
QString sinceStart(std::chrono::milliseconds time);

} // namespace checker::Times

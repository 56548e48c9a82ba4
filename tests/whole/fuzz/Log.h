// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Captures the log of a fuzzed process and prints it only if a run fails.
namespace Log {

/// Starts capturing, permanently.
void capture();
/// Discards the lines so far.
void clear();
/// The number of lines with this text since the last `clear()`, among the last few hundred.
int count(const QString& text);

/// Unless `holds`, prints the broken rule `what` and the last lines of the log, and aborts.
void require(bool holds, const char* what);

} // namespace Log

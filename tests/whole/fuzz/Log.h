// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The log of a fuzzed process: counted, and shown only when a run fails.
namespace Log {

/// Takes over the log for good.
void silence();
/// Forgets the lines so far.
void clear();
/// How many lines of this text came since the last `clear()`. Only the last few hundred are known.
int count(const QString& text);

/// Ends the process, with the last lines of the log, unless `holds`; `what` is the rule that is broken.
void require(bool holds, const char* what);

} // namespace Log

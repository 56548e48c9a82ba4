// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>

/// Compares what was observed with what a script expects.
namespace Transcript {

/// The clock by which a script was played.
enum class Clock {
    /// The same texts at the same times, in the same order.
    Virtual,
    /// The same texts in the same order, none of them early. What comes late comes right. The log is judged
    /// by itself, since it does not come over the bus, and may hold more lines than are expected.
    Real,
};

/// The difference, a line for each thing that is missing, early or too much; empty when there is none.
///
/// Of a recorded script, whose times came from a real clock, the log is always judged by itself, times may
/// differ by 100 ms, and what comes after its end is of no account.
QStringList difference(const KeyScript& script, const Observations& observed, Clock clock);

} // namespace Transcript

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QStringList>

/// Compares observations with the expectations of a script.
namespace Transcript {

/// The clock on which a script was played.
enum class Clock {
    /// Requires the same texts at the same times, in the same order.
    Virtual,
    /// Requires the same texts in the same order. No text may be early; late texts are accepted. The log is
    /// compared separately, because it does not arrive over the bus, and may hold additional lines.
    Real,
};

/// A line for each missing, early or unexpected observation.
///
/// The times of a recorded script come from a real clock: its log is always compared separately, times may
/// differ by 100 ms, and observations after its end are ignored.
QStringList difference(const KeyScript& script, const Observations& observed, Clock clock);

} // namespace Transcript

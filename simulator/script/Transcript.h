// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/Observation.h"

#include <QStringList>

/// Compares what was observed with what a script expects.
namespace Transcript {

enum class Mode {
    /// On a virtual clock: the same texts at the same times, in the same order.
    Exact,
    /// On a real clock: the same texts in the same order, none of them early. What comes late comes
    /// right. The log is judged by itself, since it does not come over the bus, and may hold more lines
    /// than are expected.
    RealTime,
};

/// The difference, a line for each thing that is missing, early or too much; empty when there is none.
QStringList difference(const Observations& expected, const Observations& observed, Mode mode);

} // namespace Transcript

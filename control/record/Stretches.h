// SPDX-License-Identifier: MIT
#pragma once

#include "control/record/Recording.h"

#include <QVector>

namespace control {

/// A part of a recording that begins when the daemon has forgotten all keys: none is down, and the last one
/// was released 1.5 s before.
struct Stretch
{
    std::chrono::microseconds begin{0};
    /// The begin of the next stretch, or the end of the recording.
    std::chrono::microseconds end{0};
    /// At its begin; empty if it is not known.
    QString state;
    QVector<Happening> happenings;
    /// Why it is not known what the keys do in it; empty if it is known.
    QString unknown;
};

/// The parts of a recording. The first begins with the recording, where keys that were pressed before may
/// still count, and so does a stretch with a gap; the others are known.
QVector<Stretch> stretchesOf(const Recording& recording, std::chrono::microseconds end);

} // namespace control

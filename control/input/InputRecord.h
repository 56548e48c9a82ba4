// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <chrono>

namespace control {

/// A record that an input node reported.
struct InputRecord
{
    /// 0 or 1.
    int keyboard = 0;
    /// On the monotonic clock.
    std::chrono::microseconds at{0};
    quint16 type = 0;
    quint16 code = 0;
    qint32 value = 0;
};

/// A moment at which records of an input node are missing.
struct InputGap
{
    enum class Reason {
        /// The kernel dropped records, because they were not read in time.
        Dropped,
        /// The node vanished. Records are missing until `Returned`.
        Vanished,
        /// The node is there again. What happened meanwhile is not known.
        Returned,
    };

    int keyboard = 0;
    /// On the monotonic clock.
    std::chrono::microseconds at{0};
    Reason reason = Reason::Dropped;
};

} // namespace control

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ls {

/// Named stop-watches. For the main thread only.
///
/// The time between `start` and `finish` is reported as a debug line of the logging category "Timer",
/// whose default threshold is critical.
class Timer
{
public:
    /// Starts the stop-watch `name`, or restarts it.
    static void start(const QString& name);
    /// Stops the stop-watch `name` and reports its time in milliseconds; does nothing if it is not running.
    static void finish(const QString& name);
};

} // namespace ls

// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <sys/types.h>

/// A copy of the test's process that logs through LogOutput, with `file` as its standard error.
class LogProcess
{
public:
    /// Starts the process, which calls `log` and then waits for `end`.
    LogProcess(int file, const std::function<void()>& log);
    /// Kills the process if it still runs.
    ~LogProcess();

    LogProcess(const LogProcess&) = delete;
    LogProcess& operator=(const LogProcess&) = delete;

    /// Waits until `log` has returned; false when the process ended before.
    bool awaitLogged() const;
    /// Lets the process call exit(0), without waiting for its end.
    void end();
    /// Waits for the end of the process. Returns the exit status, or 128 and the number of the signal.
    int status();

private:
    [[noreturn]] void run(int file, const std::function<void()>& log);

    pid_t m_process;
    int m_logged[2]; // a byte comes when `log` has returned
    int m_end[2];    // ends when the process is to end
};

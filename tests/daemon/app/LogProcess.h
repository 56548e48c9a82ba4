// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <sys/types.h>

/// A fork of the test's process that logs through LogOutput, with `file` as its standard error.
class LogProcess
{
public:
    /// Starts the process, which calls `log` and then waits for the call of `end`.
    LogProcess(int file, const std::function<void()>& log);
    /// Kills the process if it is still running.
    ~LogProcess();

    LogProcess(const LogProcess&) = delete;
    LogProcess& operator=(const LogProcess&) = delete;

    /// Waits until `log` has returned; false if the process ends first.
    bool awaitLogged() const;
    /// Makes the process call exit(0), without waiting for its end.
    void end();
    /// Waits for the end of the process. Returns the exit status, or 128 plus the number of the signal.
    int status();

private:
    [[noreturn]] void run(int file, const std::function<void()>& log);

    pid_t m_process;
    int m_logged[2]; // receives a byte when `log` has returned
    int m_end[2];    // closed to end the process
};

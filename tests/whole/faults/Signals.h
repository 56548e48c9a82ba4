// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <signal.h>

/// Sends `signal` to one process; false for 0 and negative numbers, which would mean process groups.
inline bool signalTo(qint64 process, int signal)
{
    return process > 0 && ::kill(pid_t(process), signal) == 0;
}

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What processes and units have taken, as the kernel counts it.
namespace ProcessCost {

/// A line of /proc/PROCESS/smaps_rollup, for example "Pss", in KiB; -1 when there is none.
int memoryKib(int process, const QString& line);
/// How often the process's threads went to sleep.
int voluntarySwitches(int process);
/// The processor time that all processes of the unit have taken since its start, in microseconds.
qint64 cpuTimeUs(const QString& unit);
/// The number of open files.
int openFiles(int process);

} // namespace ProcessCost

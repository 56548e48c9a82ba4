// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// What a process holds and has used, as the kernel counts it; for processes into which this one may look.
namespace ProcessFigures {

/// A line of /proc/PROCESS/smaps_rollup, for example "Pss", in KiB; -1 when there is none.
int memoryKib(qint64 process, const QString& line);
/// The most memory that it ever had, pages of its files included; -1 when it is gone.
int peakKib(qint64 process);
/// Processor time since its start, in steps of 10 ms; -1 when the process is gone.
int processorMs(qint64 process);
/// How often its threads went to sleep.
int voluntarySwitches(qint64 process);
/// How many of these it has; 0 when it is gone.
int threads(qint64 process);
int descriptors(qint64 process);
/// Of this process.
int ownDescriptors();

} // namespace ProcessFigures

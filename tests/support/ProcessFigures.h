// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The resources of a process according to the kernel. This process must be allowed to inspect it.
namespace ProcessFigures {

/// A line of /proc/PROCESS/smaps_rollup, for example "Pss", in KiB; -1 if it does not exist.
int memoryKib(qint64 process, const QString& line);
/// The peak resident memory; -1 if the process has ended.
int peakKib(qint64 process);
/// Processor time since its start, in steps of 10 ms; -1 if the process has ended.
int processorMs(qint64 process);
/// Voluntary context switches of all its threads.
int voluntarySwitches(qint64 process);
/// The number of these; 0 if the process has ended.
int threads(qint64 process);
int descriptors(qint64 process);
/// Of this process.
int ownDescriptors();

} // namespace ProcessFigures

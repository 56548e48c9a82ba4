// SPDX-License-Identifier: MIT
#pragma once

/// Writes the log of the process to standard error without blocking the caller.
///
/// A socket takes a line at once. Any other standard error may be shared with other processes and belong to
/// another user, so it is neither reopened nor made non-blocking: the first line starts a thread that writes
/// there. Lines arrive whole and in order. The queue holds up to 1 MiB, or a single longer line; further
/// lines are dropped, and the log reports their number when there is room again.
namespace LogOutput {

/// Handles the log messages of all threads until the process ends. At the end of `main`, at `exit()` and
/// before a fatal message ends the process, waits up to a second until queued lines are written.
void install();

} // namespace LogOutput

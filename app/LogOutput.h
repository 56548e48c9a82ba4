// SPDX-License-Identifier: MIT
#pragma once

/// The log of the process on standard error, which a line never waits for.
///
/// A socket takes a line at once. Anything else may be shared with other processes and belong to another
/// user, so it is neither reopened nor made non-blocking: a separate thread writes there, which the first
/// line starts. Lines arrive whole and in order. Up to 1 MiB waits for the reader, or a single longer line;
/// further lines are dropped, and the log reports their number when there is room again.
namespace LogOutput {

/// Takes over the log of the process, from all threads and for good. At the end of `main`, at `exit()` and
/// before a fatal message ends the process, that waits up to a second for the lines that are left.
void install();

} // namespace LogOutput

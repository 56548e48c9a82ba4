// SPDX-License-Identifier: MIT
#pragma once

#include "model/Output.h"

namespace checker {

/// What the daemon does, in words.
namespace OutputWords {

/// "speaks "Help"", "announces PaperStatus to PrintManager, with Help and Feed". A log line comes back as it
/// is. Names come from the key lists: print the result with `printable`.
QString of(const model::Output& output);

/// Whether a person or a service notices the output: speech and announcements.
bool isPerceived(const model::Output& output);

/// "A", "A and B", "A, B and C"; each empty name is quoted.
QString enumeration(const QStringList& names);

} // namespace OutputWords

} // namespace checker

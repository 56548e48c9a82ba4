// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

/// Attempts of a test that compares real times, which are wrong if the machine stalls the process.
namespace Attempts {

/// Repeats `attempt` until it returns an empty string. Returns the message of the last failure after
/// `maxUndisturbed` failures without a stall; prints the others.
QString outcome(const std::function<QString()>& attempt, int maxUndisturbed = 3);

} // namespace Attempts

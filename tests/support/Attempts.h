// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

/// Attempts of a test that compares real times, which come out wrong on a machine that lets a process wait.
namespace Attempts {

/// Repeats `attempt` until it returns an empty text. Returns the text of a failure when `maxUndisturbed`
/// attempts failed although the machine let this process run in time; prints those that do not count.
QString outcome(const std::function<QString()>& attempt, int maxUndisturbed = 3);

} // namespace Attempts

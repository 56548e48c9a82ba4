// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"

#include <QString>

namespace checker {

/// When a search gives up, so that all of them together take seconds. Usual lists of any size need less than
/// a hundredth of these steps, and a row of hundreds of keys less than all of them.
constexpr model::Limits searchLimits{100'000, 3'000'000};

namespace SearchWords {

/// A number with a comma before each group of three digits.
QString grouped(quint64 number);
/// "any input; 132 situations, 7,774 steps".
QString extentOf(const model::Proof& proof);

} // namespace SearchWords

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"

#include <QString>

namespace checker {

/// When a search gives up, so that it takes seconds. The installed lists need less than a hundredth of these
/// steps.
constexpr model::Limits searchLimits{300'000, 10'000'000};

namespace SearchWords {

/// A number with a comma before each group of three digits.
QString grouped(quint64 number);
/// "any input; 132 situations, 7,774 steps".
QString extentOf(const model::Proof& proof);

} // namespace SearchWords

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/ListSources.h"

/// Findings for tests of the output, with texts that no format may break on.
namespace FindingSamples {

/// Two lists; the combinations have invalid text and characters outside of the first plane.
checker::ListSources sources();
/// A finding about the combinations with all parts, and one about the long presses with only the required
/// ones.
checker::CheckResult result();

} // namespace FindingSamples

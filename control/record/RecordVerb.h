// SPDX-License-Identifier: MIT
#pragma once

#include "control/Verb.h"

namespace control {

/// Records the device for a while, keeps its last ten minutes in memory, or fetches these.
Verb recordVerb();

} // namespace control

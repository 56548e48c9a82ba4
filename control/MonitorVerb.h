// SPDX-License-Identifier: MIT
#pragma once

#include "control/Verb.h"

namespace control {

/// Shows what the daemon announces while it does.
Verb monitorVerb();

} // namespace control

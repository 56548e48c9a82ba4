// SPDX-License-Identifier: MIT
#pragma once

#include "control/Verb.h"

namespace control {

/// Looks for the reasons why keys do nothing. It sends the daemon no command.
Verb doctorVerb();

} // namespace control

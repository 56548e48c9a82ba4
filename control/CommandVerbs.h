// SPDX-License-Identifier: MIT
#pragma once

#include "control/Verb.h"

namespace control {

/// The verbs that send the daemon commands and print its responses.
namespace CommandVerbs {

Verb lastKey();
Verb times();
Verb lists();
Verb simulate();
Verb combine();
Verb shortcut();
Verb test();

} // namespace CommandVerbs

} // namespace control

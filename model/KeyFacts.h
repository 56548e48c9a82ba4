// SPDX-License-Identifier: MIT
/// What the rules say about single keys and states.
#pragma once

#include "model/Alphabet.h"

namespace model::KeyFacts {

extern const Key menu;
extern const Key help;
extern const Key ten;
extern const Key ok;
extern const Key factoryReset;
extern const State startup;
extern const State idle;

/// Whether the daemon can speak the key's name.
bool hasName(Key key);
/// Whether the key's name is never spoken in Idle.
bool isSilent(Key key, bool isOrvane);

} // namespace model::KeyFacts

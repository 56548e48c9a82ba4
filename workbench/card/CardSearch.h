// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"

/// The assumptions of a card and the limits of its searches.
namespace CardSearch {

/// A person at the panel, while the state stays the same: with two fingers, because no row needs more.
inline model::Environment environment()
{
    model::Environment environment;
    environment.kind = model::Environment::Kind::Person;
    environment.panelKeysOnly = true;
    environment.stateChanges = false;
    environment.keyboardTest = false;
    return environment;
}

/// Enough for lists of a thousand usual rows. A search that reaches them has taken about half a second.
constexpr model::Limits limits{200'000, 4'000'000};

} // namespace CardSearch

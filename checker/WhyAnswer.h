// SPDX-License-Identifier: MIT
#pragma once

#include "checker/PlaceOf.h"
#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

#include <optional>

namespace checker {

/// Which rules decided about each key of a script.
namespace WhyAnswer {

/// Lines that explain the script; a blank line separates parts of the script between which all keys are
/// forgotten. Only the part at the time `at`, if it is given. Names from the key lists are not escaped.
QStringList of(const model::KeyLists& lists, const KeyScript& script, const PlaceOf& placeOf,
               std::optional<std::chrono::milliseconds> at);

} // namespace WhyAnswer

} // namespace checker

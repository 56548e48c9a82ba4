// SPDX-License-Identifier: MIT
#pragma once

#include "checker/CauseSearch.h"
#include "checker/PlaceOf.h"
#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

#include <optional>

namespace checker {

/// Which rules decided about each key of a script.
namespace WhyAnswer {

/// Lines that explain the script; a blank line separates parts of the script between which all keys are
/// forgotten. Only the part at the time `at`, if it is given. The search
/// for causes plays the script at most `maxTrials` times. Names from the key lists are not escaped.
QStringList of(const model::KeyLists& lists, const KeyScript& script, const PlaceOf& placeOf,
               std::optional<std::chrono::milliseconds> at, int maxTrials = CauseSearch::unlimited);

} // namespace WhyAnswer

} // namespace checker

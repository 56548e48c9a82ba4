// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyLists.h"
#include "model/Playback.h"

#include <QString>

#include <optional>

namespace checker {

/// The gesture of a row, as a person does it.
namespace Gesture {

/// Whether a person can press all keys of the row, which are not too many to play.
bool isPossible(const KeyEntry& row);
/// Plays the gesture in a state until all keys are forgotten. The row must be possible.
model::Playback play(const model::KeyModel& keyModel, model::RowId id, model::State state);
/// The gesture in words: "holding Back for 2.25 s", "holding Feed and pressing Ok", "tapping Help, then
/// Feed".
QString toText(const model::KeyLists& lists, model::RowId id);

} // namespace Gesture

} // namespace checker

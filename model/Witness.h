// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"
#include "model/Playback.h"

#include <QString>

namespace model {

/// Adds times to a run of a search: a person's movements are 50 ms apart, and a run on digital clocks has the
/// times of its ticks.
namespace Witness {

/// The time between two movements of a person in an untimed run.
constexpr std::chrono::milliseconds movementInterval{50};

/// Plays the run with all key lists. An untimed search also finds runs that no real times fit; the caller
/// must check the result.
Playback play(const KeyModel& keyModel, const Environment& environment, const Run& run);

/// The rows whose actions are announced in the last moment of `playback`, ascending.
QVector<RowId> announcedAtEnd(const Playback& playback);

/// The inputs and outputs as a key script, without rows.
QString toScript(const Playback& playback, const KeyLists& lists);

} // namespace Witness

} // namespace model

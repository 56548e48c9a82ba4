// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"
#include "model/Playback.h"

namespace checker {

/// What a person and the services do, in words: "hold Function, then press Up", "Help, then Feed", "hold Back
/// for 2.25 s".
///
/// A key alone is pressed and released; while another key is held, that is "tap". "Hold" and "press" leave
/// the key down until the words say that it is released. "Together" is at the same moment.
namespace RunWords {

/// The shortest times that are mentioned.
struct Limits
{
    /// Between two movements.
    std::chrono::milliseconds pause{500};
    /// From the press of a key to its release.
    std::chrono::milliseconds hold = Autorepeat::delay;
};

/// The movements and commands of `steps`, which last until `end`; empty if there are none.
QString of(const QVector<model::PlayedStep>& steps, std::chrono::milliseconds end, Limits limits = {});
/// The run of a search, with the times of its witness.
QString of(const model::KeyModel& keyModel, const model::Environment& environment, const model::Run& run);

} // namespace RunWords

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace model {

/// All state of the daemon that affects later keys: not the result of the keyboard test, nor the sender of
/// the next announcement.
struct Situation
{
    /// The value of `sequence` for keys that cannot complete the row.
    static constexpr quint32 dead = std::numeric_limits<quint32>::max();

    /// The number of released keys of the first row of three or more keys; 0 without such a row.
    quint32 sequence = 0;
    State state = State::Undefined;
    /// The key that was released last and not yet forgotten.
    Key lastKey = Key::None;
    /// The key that opened a shortcut.
    Key heldKey = Key::None;
    /// The key that opened a combination.
    Key firstKey = Key::None;
    /// The key whose long press is timed; none while its timer does not run.
    Key armedKey = Key::None;
    bool longPressRuns = false;
    /// Whether the 1500 ms after a release run.
    bool windowRuns = false;
    bool factoryResetRuns = false;
    bool gestureSeen = false;
    bool testMode = false;
    quint8 spare[2] = {0, 0};

    /// No key is held, open or waiting, and no timer runs.
    static Situation initial(State state)
    {
        Situation situation;
        situation.state = state;
        return situation;
    }

    friend bool operator==(const Situation& a, const Situation& b)
    {
        return std::memcmp(&a, &b, sizeof a) == 0;
    }
    friend bool operator!=(const Situation& a, const Situation& b) { return !(a == b); }
};

// Compared and hashed as bytes.
static_assert(std::has_unique_object_representations_v<Situation>);

} // namespace model

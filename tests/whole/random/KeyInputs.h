// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Play.h"

/// A key event that reaches the daemon from the panel, a raw record or a command.
struct KeyInput
{
    std::chrono::milliseconds at{0};
    Place place;
    int code = 0;
    QString key;
    int value = 0;
    /// The operating state at that time.
    QString state;

    /// False in Startup, in which keys are ignored.
    bool isSeen() const { return state != ls::StateId::Startup; }
    bool isPress() const { return isSeen() && value == 1; }
    bool isRelease() const { return isSeen() && value == 0; }
    bool isRepeat() const { return isSeen() && value == 2; }
};

namespace KeyInputs {

/// All key events of a script in their order, with the repetitions of held keys.
QVector<KeyInput> of(const KeyScript& script);

/// The operating state before the first and after each step.
QStringList statesOf(const KeyScript& script);

/// The place of a timer that fires at `at`: before the steps of that moment.
Place timerPlace(const KeyScript& script, std::chrono::milliseconds at);

} // namespace KeyInputs

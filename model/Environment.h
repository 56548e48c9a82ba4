// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"

#include <QString>
#include <QVector>

#include <chrono>

namespace model {

/// The assumptions of a search: who presses keys, which commands arrive, and what is known about time. Each
/// verdict names its environment, because it holds only there.
struct Environment
{
    enum class Kind {
        /// Any key may be pressed, released or repeated at any moment.
        AnyInput,
        /// A limited number of fingers presses and releases keys. Each device repeats the key that was
        /// pressed last until any of its keys is released.
        Person,
        /// Any input, and commands that simulate the keys of combinations and shortcuts.
        Services,
    };
    enum class Time {
        /// A running timer may expire at any moment. Covers every real run, so that "never" is sound.
        Untimed,
        /// Digital clocks: all inputs come at ticks of 250 ms, and what is due comes before the next key.
        /// Gives paces and durations. Repetitions come at ticks as well, in reality every 33 ms, so that
        /// "never" holds on these clocks only.
        Digital,
    };

    static constexpr std::chrono::milliseconds tick{250};
    static constexpr int maxFingers = 4;
    static constexpr int deviceCount = 2;

    Kind kind = Kind::AnyInput;
    Time time = Time::Untimed;
    /// The most keys that a person holds down at once, at most `maxFingers`, and the number of devices.
    int fingers = 2;
    int devices = deviceCount;
    /// Whether only keys of the panel are pressed, or also "Unknown" and keys without an identifier.
    bool panelKeysOnly = false;
    /// The minimum time between two movements of a person's fingers; a multiple of the tick, at most a
    /// minute, and 0 unless time is digital.
    std::chrono::milliseconds pace{0};
    /// Whether the state may change at any time, and whether the keyboard test may begin.
    bool stateChanges = true;
    bool keyboardTest = true;
    /// Without `stateChanges`: the most changes of state in a run. Only `ListComparison` counts them, for all
    /// other searches it must be 0.
    int maxStateChanges = 0;
    /// The initial states, with no key held or waiting.
    QVector<State> startStates = Alphabet::states();

    /// A person with two fingers in front of both devices, while the state stays as it is and the keyboard
    /// test does not run.
    static Environment person();

    /// For a person: the environments with one finger, two fingers and so on, each on one device, and
    /// finally with all devices. A search uses a larger one only for what it has not found in the smaller
    /// ones. For other kinds: this environment alone.
    QVector<Environment> growth() const;
    /// The environment in words: "any input", "a person with 2 fingers".
    QString toText() const;
};

} // namespace model

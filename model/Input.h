// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"

namespace model {

/// One event that the daemon receives.
struct Input
{
    enum class Kind : quint8 {
        Press,
        Release,
        Repeat,
        WindowEnd,        // 1500 ms after the last release
        LongPressTime,    // the time of the armed long press expires
        FactoryResetTime, // FactoryReset has been held for 5000 ms
        ChangeState,
        StartTest,
        SimulateCombination, // a command passes one key to the combinations
        SimulateShortcut,    // a command passes one key to the shortcuts
        Tick,                // the clock of the environment; nothing that the daemon receives
    };

    Kind kind = Kind::Tick;
    /// The number of a key or, for `ChangeState`, of a state. For `Tick`: 1 if it lasts until the time of the
    /// armed long press expires.
    quint8 value = 0;
    /// The input device of a key: 0 or 1.
    quint8 device = 0;
    quint8 spare = 0;

    static Input press(Key key, int device = 0) { return of(Kind::Press, key, device); }
    static Input release(Key key, int device = 0) { return of(Kind::Release, key, device); }
    static Input repeat(Key key, int device = 0) { return of(Kind::Repeat, key, device); }
    static Input state(State state) { return {Kind::ChangeState, static_cast<quint8>(state), 0, 0}; }
    static Input of(Kind kind, Key key = Key::None, int device = 0)
    {
        return {kind, static_cast<quint8>(key), static_cast<quint8>(device), 0};
    }

    static Input tick(bool isLong) { return {Kind::Tick, static_cast<quint8>(isLong ? 1 : 0), 0, 0}; }

    Key key() const { return static_cast<Key>(value); }
    State newState() const { return static_cast<State>(value); }
    bool isLong() const { return value != 0; }
    /// Whether the input is the expiry of a timer of the daemon.
    bool isExpiry() const { return kind >= Kind::WindowEnd && kind <= Kind::FactoryResetTime; }

    friend bool operator==(Input a, Input b)
    {
        return a.kind == b.kind && a.value == b.value && a.device == b.device;
    }
};

} // namespace model

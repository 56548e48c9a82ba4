// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QElapsedTimer>

#include <utility>

/// What is done to a device and what its daemon does, as a key script that can be played again. It holds no
/// more than a script file may have.
class SessionRecording
{
public:
    /// Starts a new recording: the daemon of a device with this model, state, key lists and services is ready
    /// now.
    void begin(const QString& model, const QString& state, const QMap<QString, QByteArray>& keyLists,
               const QMap<QString, ServiceChange::Condition>& services);
    /// Nothing more happens at the device.
    void stop();

    void add(const ScriptStep& step);
    void observe(const QString& text);

    bool isRunning() const { return m_state == State::Running; }
    /// Whether it was ever begun.
    bool isStarted() const { return m_state != State::None; }
    /// Whether the recording was stopped since the last call, because it holds as much as it may.
    bool takeFullness() { return std::exchange(m_isFullNow, false); }
    /// Whether nothing was done yet.
    bool isUntouched() const { return m_script.steps.isEmpty(); }

    /// The text of a script file; empty, with sentences in `faults`, when a script cannot tell it.
    QString toText(QStringList* faults) const;

private:
    enum class State { None, Running, Stopped };

    std::chrono::milliseconds elapsed() const;
    void grow(int textSize);

    State m_state = State::None;
    bool m_isFullNow = false;
    KeyScript m_script;
    QMap<QString, QByteArray> m_keyLists;
    QElapsedTimer m_clock;
    int m_size = 0;
};

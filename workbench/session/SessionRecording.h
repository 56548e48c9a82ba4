// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QElapsedTimer>

#include <utility>

/// The actions at a device and the observations of its daemon, as a key script for replay. The size is
/// limited to that of a script file.
class SessionRecording
{
public:
    /// Starts a new recording. The daemon of the described device must just have become ready.
    void begin(const QString& model, const QString& state, const QMap<QString, QByteArray>& keyLists,
               const QMap<QString, ServiceChange::Condition>& services);
    void stop();

    void add(const ScriptStep& step);
    void observe(const QString& text);

    bool isRunning() const { return m_state == State::Running; }
    /// Whether `begin` was ever called.
    bool isStarted() const { return m_state != State::None; }
    /// Whether the recording has reached its limit, and stopped, since the last call.
    bool takeFullFlag() { return std::exchange(m_becameFull, false); }
    bool hasSteps() const { return !m_script.steps.isEmpty(); }

    /// The text of a script file. If a script cannot represent the recording, returns an empty text and sets
    /// `faults`.
    QString toText(QStringList* faults) const;

private:
    enum class State { None, Running, Stopped };

    std::chrono::milliseconds elapsed() const;
    void grow(int textSize);

    State m_state = State::None;
    bool m_becameFull = false;
    KeyScript m_script;
    QMap<QString, QByteArray> m_keyLists;
    QElapsedTimer m_clock;
    int m_size = 0;
};

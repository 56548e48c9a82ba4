// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/demonstration/Prompt.h"
#include "simulator/demonstration/TranscriptPrinter.h"
#include "simulator/device/DeviceRecorder.h"
#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/KeyScript.h"

#include <QObject>
#include <QTimer>

#include <memory>

class ScriptPlayer;

/// Plays a key script on a simulated device as a transcript, judges what came of it, and lets a person at
/// a terminal go on with lines of their own.
class Demonstration : public QObject
{
    Q_OBJECT

public:
    enum Status { AsExpected = 0, NotAsExpected = 1, NotStarted = 2 };

    /// `options` are completed by what the script's header says.
    Demonstration(const KeyScript& script, DeviceOptions options, QObject* parent = nullptr);

    void start();

    /// What was done so far, typed lines included, at the times at which it was done, with all that the
    /// daemon announced, spoke and answered as its expectations.
    KeyScript recorded() const;

Q_SIGNALS:
    void finished(int status);

private:
    void awaitReadiness();
    void begin();
    ScriptPlayer* play(const KeyScript& script);
    void onStepping(const ScriptStep& step);
    void judge();
    void openPrompt();
    void onTyped(const QString& line);
    void onDaemonExited(int status);
    void giveUp(const QString& reason);

    KeyScript m_script;
    QVector<ScriptStep> m_taken;
    SimulatedDevice m_device;
    DeviceRecorder m_recorder;
    TranscriptPrinter m_printer;
    QTimer m_readinessTimer;
    int m_readinessChecks = 0;
    int m_status = NotStarted;
    std::unique_ptr<Prompt> m_prompt;
};

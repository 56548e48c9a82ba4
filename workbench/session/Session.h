// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"
#include "workbench/session/DeviceSetup.h"
#include "workbench/session/Replay.h"
#include "workbench/session/SessionEntry.h"
#include "workbench/session/SessionFacts.h"
#include "workbench/session/SessionRecording.h"
#include "workbench/session/StepQueue.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

class DaemonWatch;
class SessionReporter;
class SimulatedDevice;

/// A simulated device that people work with: it can be restarted, remembers what happened, records and
/// replays. All that is done to it are statements of key scripts. For the main thread only.
class Session : public QObject
{
    Q_OBJECT

public:
    using Status = entry::Device::Status;

    using Changes = DeviceSetup::Changes;

    /// The key lists of `options` are the installed ones. Nothing runs before `start`, `restart` or `replay`.
    explicit Session(const DeviceOptions& options, QObject* parent = nullptr);
    ~Session() override;

    /// Starts the device; entries of the type `entry::Device` report its progress.
    void start();
    /// Makes the device, its bus and its daemon anew; keys, pending statements and a replay are given up.
    /// Returns a sentence when the changes name something that there is not, and does nothing then.
    QString restart(const Changes& changes);

    Status status() const { return m_status; }
    /// Why the device has ended, as a sentence; empty while it has not.
    QString reason() const { return m_reason; }

    /// The process id of the daemon; 0 while none runs.
    qint64 daemonProcess() const;

    /// The address of the device's bus, another one after each start; empty while there is none.
    QString busAddress() const;

    /// Takes statements of a key script ("press Menu"), those that are due at once before it returns. When
    /// one of them is faulty or cannot be taken now, nothing is done. Keys that they press and leave down
    /// are held by `client`; 0 is nobody.
    QVector<ScriptFault> take(const QString& statements, int client = 0);
    /// The client is gone: gives up what it still wanted to do and releases the keys that it holds.
    void releaseKeysOf(int client);

    /// Restarts the device as the script's header says, plays the script and judges the result; entries of
    /// the type `entry::Replay` report it.
    void replay(const KeyScript& script);
    /// Reads and replays a script; does nothing but return the faults when it has some.
    QVector<ScriptFault> replay(const QString& text);
    /// Ends a replay, if there is one, and releases the keys that it holds.
    void stopReplay();
    bool isReplaying() const { return m_replay.has_value(); }

    /// Forgets what was recorded. A recording begins with a fresh daemon, for what a daemon that is at work
    /// remembers stands in no header: unless nothing was done yet, the device restarts as it is.
    void restartRecording();
    /// What was done since the device became ready, and what came of it, as the text of a *.keys file; empty,
    /// with sentences in `faults`, when a script cannot tell it.
    QString recording(QStringList* faults) const;
    /// The recording that a restart of the device ended last, if anything was done in it; in the same way.
    QString formerRecording(QStringList* faults) const;

    QString model() const { return m_makeUp.options().model; }
    QString state() const { return m_makeUp.options().state; }
    QVector<HeldKey> heldKeys() const { return m_facts.heldKeys(); }
    /// Whether the daemon runs a keyboard test.
    bool isTesting() const { return m_facts.isTesting(); }
    /// Whether the daemon answers calls, as far as is known.
    bool isAnswering() const;
    bool isRecording() const { return m_recording.isRunning(); }
    bool hasFormerRecording() const { return m_formerRecording.isStarted(); }
    /// The time since the device was started: the moment of an entry that would come now.
    std::chrono::milliseconds now() const;
    /// File name to content, as the daemon has read them at its start; a list that is not there is left out.
    QMap<QString, QByteArray> keyLists() const { return m_makeUp.options().keyLists; }

Q_SIGNALS:
    void added(const SessionEntry& entry);

private:
    void beginStart();
    void build();
    void awaitReadiness();
    void becomeReady();
    void onDaemonExited(int status);
    void onBusEnded();
    void end(const QString& reason);
    /// Nothing of the device is heard any more.
    void leaveDevice();
    void dropDevice();
    void report();

    QString whyNotNow() const;
    void onStepping(const ScriptStep& step);
    void onObserved(const QString& text);
    void add(const SessionEvent& event);
    void beginRecording();
    void watchRecording();
    void watchDaemon();
    void leaveDaemon();

    void beginReplay();
    void endReplay(entry::Replay::Status status);

    DeviceSetup m_makeUp;
    SessionRecording m_recording;
    SessionRecording m_formerRecording;
    SessionFacts m_facts;
    qint64 m_lastId = 0;
    QElapsedTimer m_clock;
    QElapsedTimer m_startClock;
    QTimer m_buildTimer;
    QTimer m_readinessTimer;
    Status m_status = Status::Ended;
    QString m_reason;
    StepQueue m_steps;
    std::unique_ptr<SimulatedDevice> m_device;
    std::unique_ptr<SessionReporter> m_events;
    /// While the daemon is ready; a child.
    DaemonWatch* m_watch = nullptr;
    std::optional<Replay> m_replay;
};

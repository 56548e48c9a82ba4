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

/// A simulated device for interactive use, which can be restarted, recorded and replayed. It is controlled by
/// statements of key scripts. Not thread-safe.
class Session : public QObject
{
    Q_OBJECT

public:
    using Status = entry::Device::Status;
    using Changes = DeviceSetup::Changes;

    /// The key lists of `options` are the installed ones. Nothing is started yet.
    explicit Session(const DeviceOptions& options, QObject* parent = nullptr);
    ~Session() override;

    /// Starts the device; entries of the type `entry::Device` report its progress.
    void start();
    /// Restarts the device, its bus and its daemon; cancels pending statements and a replay. If the changes
    /// contain an unknown name, returns a sentence and does nothing.
    QString restart(const Changes& changes);

    Status status() const { return m_status; }
    /// Why the device has ended, as a sentence; empty while it has not.
    QString reason() const { return m_reason; }

    /// The process id of the running daemon; 0 otherwise.
    qint64 daemonProcess() const;

    /// The address of the device's bus, which differs after each start; empty without a device.
    QString busAddress() const;

    /// Executes statements of a key script ("press Menu"); those without a delay before it returns. Executes
    /// nothing if a statement is faulty or the device is not available. Keys left down are held by `client`;
    /// 0 means no client.
    QVector<ScriptFault> execute(const QString& statements, int client = 0);
    /// Cancels pending statements of `client` and releases the keys that it holds.
    void releaseKeysOf(int client);

    /// Restarts the device as described in the script's header and plays the script; entries of the type
    /// `entry::Replay` report the result.
    void replay(const KeyScript& script);
    /// Parses a script and, if it has no faults, replays it.
    QVector<ScriptFault> replay(const QString& text);
    /// Stops a running replay and releases the keys that it holds.
    void stopReplay();
    bool isReplaying() const { return m_replay.has_value(); }

    /// Starts a new recording. A script cannot describe the state of a daemon in use, so this restarts the
    /// device unless it is unused.
    void restartRecording();
    /// All actions since the device became ready and their results, as the text of a *.keys file. If a script
    /// cannot represent them, returns an empty text and sets `faults`.
    QString recording(QStringList* faults) const { return m_recording.toText(faults); }
    /// Likewise, for the last recording with actions that a restart of the device ended.
    QString formerRecording(QStringList* faults) const { return m_formerRecording.toText(faults); }

    QString model() const { return m_setup.options().model; }
    QString state() const { return m_setup.options().state; }
    QVector<HeldKey> heldKeys() const { return m_facts.heldKeys(); }
    /// Whether the daemon runs a keyboard test.
    bool isTesting() const { return m_facts.isTesting(); }
    /// False only if the daemon is known not to answer calls.
    bool isAnswering() const;
    bool isRecording() const { return m_recording.isRunning(); }
    bool hasFormerRecording() const { return m_formerRecording.isStarted(); }
    /// The time since the device was started, as in the entries.
    std::chrono::milliseconds now() const;
    /// File name to content of the existing key lists, as the daemon read them at its start.
    QMap<QString, QByteArray> keyLists() const { return m_setup.options().keyLists; }
    const DeviceOptions& options() const { return m_setup.options(); }
    /// The options after a restart with `changes`, which must have passed `DeviceSetup::check`.
    DeviceOptions optionsAfter(const Changes& changes) const;

Q_SIGNALS:
    void added(const SessionEntry& entry);

private:
    void build();
    void awaitReadiness();
    void becomeReady();
    void end(const QString& reason);
    void disconnectDevice();
    void deleteDevice();
    void report();

    /// Why statements cannot be executed now, as a sentence; empty if they can.
    QString unavailableReason() const;
    void onAboutToPlay(const ScriptStep& step);
    void onObserved(const QString& text);
    void add(const SessionEvent& event);
    void beginRecording();
    void watchRecording();
    void watchDaemon();
    void unwatchDaemon();

    void beginReplay();
    void endReplay(entry::Replay::Status status);

    DeviceSetup m_setup;
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
    /// A child; null unless the daemon is ready.
    DaemonWatch* m_watch = nullptr;
    std::optional<Replay> m_replay;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"
#include "simulator/device/BusDaemon.h"
#include "simulator/device/DaemonProcess.h"
#include "simulator/device/DeviceFolder.h"
#include "simulator/device/DeviceOptions.h"
#include "simulator/device/KeyboardClient.h"
#include "simulator/device/SpeechDaemonStandIn.h"
#include "simulator/device/StateHandlerStandIn.h"
#include "simulator/panel/Panel.h"
#include "simulator/script/ScriptTarget.h"

#include <QObject>

#include <memory>

/// An embosser without its mechanics: the real daemon with a front panel, a private system bus and stand-ins
/// for the services. Destroying the object ends all processes of the device.
///
/// Announcements and speech are reported in the order in which the daemon sent them.
class SimulatedDevice : public QObject, public ScriptTarget
{
    Q_OBJECT

public:
    explicit SimulatedDevice(const DeviceOptions& options = {}, QObject* parent = nullptr);
    ~SimulatedDevice() override;

    /// Starts the bus, the stand-ins and the daemon, without waiting for the daemon to be ready. On failure,
    /// returns false and sets `errorString`.
    bool start() { return startServices() && startDaemon(); }
    QString errorString() const { return m_error; }
    /// Like `start`, but without the daemon.
    bool startServices();
    bool startDaemon();
    /// Ends the daemon and waits for its end; the rest of the device keeps running.
    void stopDaemon() { m_daemon.stop(); }

    /// Whether the daemon has declared itself ready.
    bool isReady() const;
    bool isRunning() const { return m_daemon.isRunning(); }

    /// The number of bytes of keys and typed lines that the daemon has not read yet.
    qint64 pendingInput() const;

    DeviceFolder& folder() { return m_folder; }
    Panel& panel() { return m_panel; }
    DaemonProcess& daemon() { return m_daemon; }
    BusDaemon& bus() { return m_bus; }
    StateHandlerStandIn& stateHandler() { return m_stateHandler; }

    /// Declares `service`, "state-handler" or "speechd", ready or not ready.
    void declareReady(const QString& service) { m_folder.setReady(service, true); }
    void withdrawReady(const QString& service) { m_folder.setReady(service, false); }

    /// Restarts the bus and the stand-ins; false on failure. The daemon does not reconnect and must be
    /// restarted.
    bool restartBus();

    /// The speech daemon leaves the bus, or returns to it.
    void dropSpeech() { m_speech->disappear(); }
    void restoreSpeech() { m_speech->appear(); }

    /// Sends a command and runs the event loop until its response arrives, without a timeout. Empty on an
    /// error. No other command may be pending.
    QVariantMap request(const QVariantMap& command);

    void press(int keyboard, const QString& key) override { m_panel.press(keyboard, key); }
    void release(int keyboard, const QString& key) override { m_panel.release(keyboard, key); }
    void record(int keyboard, const RawRecord& record) override { m_panel.record(keyboard, record); }
    void setState(const QString& state) override;
    void setService(const ServiceChange& change) override;
    void sendCommand(const QVariantMap& command) override { send(command, KeyboardClient::defaultTimeout); }
    void typeLine(const QString& line) override { m_daemon.typeLine(line); }

Q_SIGNALS:
    /// The front panel wrote `record` to `keyboard`.
    void written(int keyboard, const RawRecord& record);
    void announced(const QVariantMap& notification);
    void answered(const QVariantMap& response);
    void commandFailed(const QDBusError& error);
    void spoken(const QVariantMap& request);
    void speechCancelled();
    void logLine(const QString& line);
    void outputLine(const QString& line);
    void daemonExited(int status);
    void busEnded();

private:
    bool startBus();
    void connectPeers();
    void setStateHandler(ServiceChange::Condition condition);
    void setSpeechDaemon(ServiceChange::Condition condition);
    bool fail(const QString& error);
    void send(const QVariantMap& command, int timeout);

    DeviceOptions m_options;
    DeviceFolder m_folder;
    Panel m_panel;
    BusDaemon m_bus;
    StateHandlerStandIn m_stateHandler;
    ServiceChange::Condition m_stateHandlerCondition = ServiceChange::Condition::Running;
    // Shared by all observers of the daemon, because order is preserved only within one connection.
    std::unique_ptr<BusConnection> m_connection;
    std::unique_ptr<SpeechDaemonStandIn> m_speech;
    std::unique_ptr<KeyboardClient> m_client;
    DaemonProcess m_daemon;
    QString m_error;
};

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

/// An embosser without its mechanics: the real daemon on a private device with a front panel, a system
/// bus and stand-ins for the services around it. The device and all its processes go with this object.
///
/// What the daemon announces and speaks is reported in the order in which it was sent.
class SimulatedDevice : public QObject, public ScriptTarget
{
    Q_OBJECT

public:
    explicit SimulatedDevice(const DeviceOptions& options = {}, QObject* parent = nullptr);
    ~SimulatedDevice() override;

    /// Brings up the bus and the stand-ins, then the daemon, without waiting for what that does. False
    /// when something could not be started; `errorString` tells what.
    bool start();
    QString errorString() const { return m_error; }
    /// As `start`, but without the daemon, which `startDaemon` adds.
    bool startServices();
    bool startDaemon();
    /// Ends the daemon and waits for its end; the device stays up.
    void stopDaemon() { m_daemon.stop(); }

    /// Whether the daemon has declared itself ready.
    bool isReady() const;
    bool isRunning() const { return m_daemon.isRunning(); }

    /// How many bytes of keys and typed lines the daemon has not taken yet.
    qint64 pendingInput() const;

    DeviceFolder& folder() { return m_folder; }
    Panel& panel() { return m_panel; }
    DaemonProcess& daemon() { return m_daemon; }
    /// For a service that ends with the bus, and for what needs a connection beside the stand-ins'.
    BusDaemon& bus() { return m_bus; }
    StateHandlerStandIn& stateHandler() { return m_stateHandler; }

    /// A service declares itself ready, or not ready: "state-handler" or "speechd".
    void declareReady(const QString& service) { m_folder.setReady(service, true); }
    void withdrawReady(const QString& service) { m_folder.setReady(service, false); }

    /// Ends the bus, if it still runs, and starts another one, with the stand-ins on it. False when that
    /// cannot be done. The daemon must be started anew to come to it.
    bool restartBus();

    /// The speech daemon leaves the bus, and comes back.
    void dropSpeech();
    void restoreSpeech();

    /// Sends a command and waits for its response, running the event loop; an empty map when an error or
    /// nothing at all came back within some seconds. No other command may be open.
    QVariantMap request(const QVariantMap& command);

    void press(int keyboard, const QString& key) override;
    void release(int keyboard, const QString& key) override;
    void record(int keyboard, const RawRecord& record) override;
    void setState(const QString& state) override;
    void setService(const ServiceChange& change) override;
    void sendCommand(const QVariantMap& command) override;
    void typeLine(const QString& line) override;

Q_SIGNALS:
    /// The front panel wrote `record` to the keyboard number `keyboard`.
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

    DeviceOptions m_options;
    DeviceFolder m_folder;
    Panel m_panel;
    BusDaemon m_bus;
    StateHandlerStandIn m_stateHandler;
    ServiceChange::Condition m_stateHandlerCondition = ServiceChange::Condition::Runs;
    // All that observes the daemon shares this connection: only there is the order kept in which it sends.
    std::unique_ptr<BusConnection> m_connection;
    std::unique_ptr<SpeechDaemonStandIn> m_speech;
    std::unique_ptr<KeyboardClient> m_client;
    DaemonProcess m_daemon;
    QString m_error;
};

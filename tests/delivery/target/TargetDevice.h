// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"
#include "simulator/device/KeyboardClient.h"
#include "simulator/script/Observation.h"
#include "simulator/script/ScriptTarget.h"
#include "tests/delivery/target/BusMonitor.h"
#include "tests/delivery/target/Journal.h"

#include <QElapsedTimer>
#include <QFile>
#include <QObject>

/// The device on which the test runs: the installed daemon, the panel's keyboards, the bus and the journal.
class TargetDevice : public QObject, public ScriptTarget
{
    Q_OBJECT

public:
    explicit TargetDevice(QObject* parent = nullptr);

    /// Connects to the panel, the bus and the journal; false on failure.
    bool connectAll();

    /// Sets the key lists for the daemon's next start; empty for the installed ones.
    bool setKeyLists(const QMap<QString, QByteArray>& files);
    bool setModel(const QString& model);
    /// Sets the state without announcing it.
    void setInitialState(const QString& state);

    /// Connects the daemon's console to this device from its next start on.
    static bool giveDaemonConsole();

    /// Whether the daemon has declared itself ready.
    static bool isReady();

    void plug(int device);
    void unplug(int device);
    static bool isPlugged(int device);

    void press(int device, const QString& key) override;
    void release(int device, const QString& key) override;
    /// Does nothing, because the kernel's keyboards report only key events.
    void record(int device, const RawRecord& record) override;
    void setState(const QString& state) override;
    void setService(const ServiceChange& change) override;
    void sendCommand(const QVariantMap& command) override;
    void typeLine(const QString& line) override;

    /// Clears the observations and restarts the clock.
    void restartObserving();
    /// The announcements, speech, cancellations and answers, then the journal.
    Observations observations();

Q_SIGNALS:
    void announced(const QVariantMap& notification);

private:
    void observe(const QString& text);
    void connectMonitor();
    void commandPanel(const QString& statement);
    void callStateHandler(const QString& method, const QString& state);

    // A separate connection, because tests stop and start the system bus.
    BusConnection m_bus;
    KeyboardClient m_client{m_bus.get()};
    BusMonitor m_monitor;
    Journal m_journal;
    QMap<QString, QByteArray> m_installedKeyLists;
    QFile m_panel;
    QFile m_console;
    QElapsedTimer m_clock;
    Observations m_actions;
    Observations m_log;
};

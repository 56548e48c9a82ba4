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

/// The device that the test runs on: the installed daemon, the panel's keyboards, the bus and the journal.
class TargetDevice : public QObject, public ScriptTarget
{
    Q_OBJECT

public:
    explicit TargetDevice(QObject* parent = nullptr);

    /// Gets hold of the device; false when something of it is not there.
    bool connectAll();

    /// The key lists that the daemon reads when it starts next; empty for the installed ones.
    bool setKeyLists(const QMap<QString, QByteArray>& files);
    bool setModel(const QString& model);
    /// What the state handler answers, without announcing it.
    void setInitialState(const QString& state);

    /// Lets the daemon, when it starts next, take its console lines from this device.
    static bool giveDaemonConsole();

    /// Whether the daemon has declared itself ready.
    static bool isReady();

    void plug(int device);
    void unplug(int device);
    static bool isPlugged(int device);

    void press(int device, const QString& key) override;
    void release(int device, const QString& key) override;
    /// Does nothing: a keyboard of the kernel's reports key events only.
    void record(int device, const RawRecord& record) override;
    void setState(const QString& state) override;
    void setService(const ServiceChange& change) override;
    void sendCommand(const QVariantMap& command) override;
    void typeLine(const QString& line) override;

    /// Forgets what was observed and counts the time from now.
    void restartObserving();
    /// What was announced, spoken, cancelled and answered, then the journal.
    Observations observations();

Q_SIGNALS:
    void announced(const QVariantMap& notification);

private:
    void observe(const QString& text);
    void connectMonitor();
    void tellPanel(const QString& statement);
    void tellStateHandler(const QString& method, const QString& state);

    // Of its own: the bus of this system is stopped and started in the tests.
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

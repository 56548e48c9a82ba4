// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QProcess;

/// A private `dbus-daemon` that replaces the system bus of this process.
///
/// Its policy allows everything. Create it, as a member of the fixture, before the process uses the system
/// bus. If the bus cannot be started, the program aborts. The bus ends with this object or with the process.
class PrivateBus
{
public:
    /// Whether the constructor connects this process; otherwise the test does.
    enum class Process { Connected, Unconnected };

    /// `activatable` are names of activatable services that fail when the bus starts them.
    explicit PrivateBus(const QStringList& activatable = {}, Process process = Process::Connected);
    ~PrivateBus();

    QString address() const { return m_address; }
    QString socketPath() const { return filePath(QStringLiteral("bus")); }
    /// Opens an additional connection of this process, called `name`. The bus closes it if it is still open.
    QDBusConnection connect(const QString& name);
    /// Returns when the bus name has no owner and this process has been notified.
    static void waitForAbsence(const QString& name);
    /// Returns when all messages that the bus has sent to this process are delivered.
    static void settle();
    /// The output of the daemon.
    QByteArray output();
    /// Prints the output if the current test function failed; for a fixture's `cleanup()`.
    void report();

private:
    QString filePath(const QString& name) const { return m_folder.filePath(name); }
    void writeConfiguration(const QStringList& activatable);
    void start();
    void connectThisProcess();

    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_daemon;
    QByteArray m_output;
    QString m_address;
    QStringList m_connections;
};

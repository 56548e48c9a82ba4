// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

class QProcess;

/// A `dbus-daemon` of the test's own that stands in for the system bus of this process.
///
/// It lets everybody do everything. Make it, as a member of the fixture, before anything in the process
/// uses the system bus; a bus that cannot be started ends the program. It ends with this object, or with
/// the process.
class PrivateBus
{
public:
    /// Whether the constructor connects this process; otherwise the test does.
    enum class Process { Connected, Unconnected };

    /// `activatable` are names for which a service is installed that fails when the bus starts it.
    explicit PrivateBus(const QStringList& activatable = {}, Process process = Process::Connected);
    ~PrivateBus();

    QString address() const { return m_address; }
    QString socketPath() const { return filePath(QStringLiteral("bus")); }
    /// A further connection of this process, as a peer; `name` tells it from the others. It is closed
    /// with the bus unless somebody closed it before.
    QDBusConnection connect(const QString& name);
    /// Returns when the bus knows nobody of that name any more, and this process knows it too.
    static void waitForAbsence(const QString& name);
    /// Returns when everything that the bus has sent to this process up to now is delivered.
    static void settle();
    /// What the daemon has written up to now.
    QByteArray output();
    /// Prints what the daemon wrote if the current test function failed; for a fixture's `cleanup()`.
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

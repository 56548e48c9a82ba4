// SPDX-License-Identifier: MIT
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QFile>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <thread>

#include <sys/prctl.h>

namespace {

constexpr char configuration[] =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <listen>unix:path=%1/bus</listen>
  <servicedir>%1</servicedir>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

constexpr char activatableService[] = "[D-BUS Service]\nName=%1\nExec=/bin/false\n";

void writeFile(const QString& path, const QString& text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) == -1) {
        qFatal("%s cannot be written", qPrintable(path));
    }
}

/// A child process that ends even if the test crashes.
class Daemon : public QProcess
{
protected:
    void setupChildProcess() override { ::prctl(PR_SET_PDEATHSIG, SIGTERM); }
};

} // namespace

PrivateBus::PrivateBus(const QStringList& activatable, Process process) : m_daemon(new Daemon)
{
    writeConfiguration(activatable);
    start();
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_address.toUtf8());
    if (process == Process::Connected) {
        connectThisProcess();
    }
}

PrivateBus::~PrivateBus()
{
    for (const QString& name : qAsConst(m_connections)) {
        QDBusConnection::disconnectFromBus(name);
    }
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    m_daemon->terminate();
    m_daemon->waitForFinished();
}

QDBusConnection PrivateBus::connect(const QString& name)
{
    m_connections.append(name);
    const QDBusConnection connection = QDBusConnection::connectToBus(m_address, name);
    // Qt stores the connection's own name without a lock. This call returns after that; later calls to other
    // services read the name.
    connection.interface()->isServiceRegistered(connection.baseService());
    return connection;
}

// A connection opened by the main thread would delay messages until the event loop runs, and sometimes
// deliver a new message before the delayed ones.
void PrivateBus::connectThisProcess()
{
    std::thread([] { QDBusConnection::systemBus(); }).join();
    if (!QDBusConnection::systemBus().isConnected()) {
        qFatal("no connection to %s", qPrintable(m_address));
    }
}

void PrivateBus::waitForAbsence(const QString& name)
{
    WAIT_FOR(!QDBusConnection::systemBus().interface()->isServiceRegistered(name));
    settle();
}

void PrivateBus::settle()
{
    QDBusConnection::systemBus().interface()->isServiceRegistered(QStringLiteral("org.freedesktop.DBus"));
    QCoreApplication::processEvents();
}

QByteArray PrivateBus::output()
{
    m_daemon->waitForReadyRead(0);
    m_output += m_daemon->readAll();
    return m_output;
}

void PrivateBus::report()
{
    if (QTest::currentTestFailed()) {
        qWarning("dbus-daemon wrote: %s", output().constData());
    }
}

void PrivateBus::writeConfiguration(const QStringList& activatable)
{
    writeFile(filePath(QStringLiteral("bus.conf")), QString::fromLatin1(configuration).arg(m_folder.path()));
    for (const QString& name : activatable) {
        writeFile(filePath(name + QStringLiteral(".service")),
                  QString::fromLatin1(activatableService).arg(name));
    }
}

void PrivateBus::start()
{
    m_daemon->setProcessChannelMode(QProcess::MergedChannels);
    m_daemon->start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--nofork"), QStringLiteral("--nosyslog"),
                     QStringLiteral("--print-address"),
                     QStringLiteral("--config-file=") + filePath(QStringLiteral("bus.conf"))});
    // The address is printed when the daemon accepts connections.
    while (!m_daemon->canReadLine()) {
        if (!m_daemon->waitForReadyRead()) {
            qFatal("dbus-daemon did not start: %s", m_daemon->readAll().constData());
        }
    }
    m_address = QString::fromUtf8(m_daemon->readLine().trimmed());
}

// SPDX-License-Identifier: MIT
#include "simulator/device/BusDaemon.h"

#include "simulator/device/DeviceFolder.h"

#include <ls/BusNames.h>

#include <QFile>

#include <unistd.h>

namespace {

constexpr int busStartTimeoutMs = 5000;

const QString denyOwnership = QStringLiteral(R"(
  <policy context="mandatory">
    <deny own="%1"/>
  </policy>)");

// The simulating user replaces the users of the other services, which install their own policies.
const QString standInPolicy = QStringLiteral(R"(
  <policy user="%1">
    <allow own="%2"/>
    <allow own="%3"/>
    <allow send_destination="%2"/>
    <allow send_destination="%3"/>
  </policy>)");

const QString configuration = QStringLiteral(R"(<!DOCTYPE busconfig PUBLIC
 "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>%1</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <deny own="*"/>
    <deny send_type="method_call"/>
    <allow send_type="signal"/>
    <allow send_requested_reply="true" send_type="method_return"/>
    <allow send_requested_reply="true" send_type="error"/>
    <allow receive_type="method_call"/>
    <allow receive_type="method_return"/>
    <allow receive_type="error"/>
    <allow receive_type="signal"/>
    <allow send_destination="org.freedesktop.DBus"/>
  </policy>
  <include>%2</include>%3
</busconfig>
)");

QString policies(DeviceOptions::NamePolicy namePolicy)
{
    const QString keyboardHandler = ls::busName(ls::ServiceId::KeyboardHandler);
    const QString standIns =
        standInPolicy.arg(QString::number(getuid()), ls::busName(ls::ServiceId::StateHandler),
                          ls::busName(QStringLiteral("SpeechDaemon")));
    const bool deny = namePolicy == DeviceOptions::NamePolicy::DenyOwnership;
    return standIns + (deny ? denyOwnership.arg(keyboardHandler) : QString());
}

QString write(const QString& path, const QString& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) != -1 && file.flush()
               ? QString()
               : QStringLiteral("%1 cannot be written: %2").arg(path, file.errorString());
}

/// The installed rules, for the simulating user: this machine has neither the daemon's user nor the group of
/// the services.
QString writePolicy(const DeviceFolder& folder)
{
    QFile installed(QStringLiteral(KEYBOARD_HANDLER_BUS_POLICY));
    if (!installed.open(QIODevice::ReadOnly)) {
        return installed.fileName() + QStringLiteral(": ") + installed.errorString();
    }
    QString rules = QString::fromUtf8(installed.readAll());
    rules.replace(QStringLiteral("user=\"" KEYBOARD_HANDLER_USER "\""),
                  QStringLiteral("user=\"%1\"").arg(getuid()));
    rules.replace(QStringLiteral("group=\"" KEYBOARD_HANDLER_SERVICE_GROUP "\""),
                  QStringLiteral("group=\"%1\"").arg(getgid()));
    return write(folder.busPolicy(), rules);
}

QString writeConfiguration(const DeviceFolder& folder, const QString& address,
                           DeviceOptions::NamePolicy namePolicy)
{
    const QString fault = writePolicy(folder);
    return fault.isEmpty() ? write(folder.busConfiguration(),
                                   configuration.arg(address, folder.busPolicy(), policies(namePolicy)))
                           : fault;
}

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLocal8Bit(file.readAll()) : QString();
}

} // namespace

QString BusDaemon::start(const DeviceFolder& folder, DeviceOptions::NamePolicy namePolicy)
{
    m_address = QStringLiteral("unix:path=") + folder.busSocket();
    const QString fault = writeConfiguration(folder, m_address, namePolicy);
    if (!fault.isEmpty()) {
        return fault;
    }
    // A file, because dbus-daemon would block on a pipe while the test that should read it waits for a reply.
    m_process.setStandardErrorFile(folder.busLog());
    m_process.start(QStringLiteral("dbus-daemon"),
                    {QStringLiteral("--nofork"), QStringLiteral("--nopidfile"),
                     QStringLiteral("--print-address=1"),
                     QStringLiteral("--config-file=") + folder.busConfiguration()});
    // The address is printed when the socket listens.
    if (!m_process.waitForReadyRead(busStartTimeoutMs)) {
        return QStringLiteral("dbus-daemon did not start: %1 %2")
            .arg(m_process.errorString(), contentOf(folder.busLog()));
    }
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this, &BusDaemon::ended,
            Qt::UniqueConnection);
    return {};
}

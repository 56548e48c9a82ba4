// SPDX-License-Identifier: MIT
#include "tests/control/ControlProgram.h"

#include "tests/support/Waiting.h"

ControlProgram::ControlProgram(const QString& busAddress, const QStringList& arguments,
                               const QStringList& view)
    : m_view(view), m_arguments(arguments)
{
    setVariable(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), busAddress);
    setVariable(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
}

void ControlProgram::setVariable(const QString& name, const QString& value)
{
    m_variables.insert(name, value);
}

void ControlProgram::start()
{
    QStringList command{QStringLiteral(CONTROL_PROGRAM)};
    if (!m_shell.isEmpty()) {
        command = QStringList{QStringLiteral("/bin/sh"), QStringLiteral("-c"), m_shell} + command;
    }
    if (!m_view.isEmpty()) {
        command = QStringLiteral("bwrap --die-with-parent --dev-bind / /").split(' ') + m_view + command;
    }
    command += m_arguments;
    m_process.setProcessEnvironment(m_variables);
    m_process.start(command.takeFirst(), command);
    m_isStarted = true;
}

int ControlProgram::status()
{
    constexpr int firstSignalStatus = 128;
    if (!m_isStarted) {
        start();
    }
    WAIT_FOR(!isRunning());
    return m_process.exitStatus() == QProcess::CrashExit ? firstSignalStatus + m_process.exitCode()
                                                         : m_process.exitCode();
}

QByteArray ControlProgram::out()
{
    m_out += m_process.readAllStandardOutput();
    return m_out;
}

QByteArray ControlProgram::err()
{
    m_err += m_process.readAllStandardError();
    return m_err;
}

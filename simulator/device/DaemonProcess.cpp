// SPDX-License-Identifier: MIT
#include "simulator/device/DaemonProcess.h"

#include "simulator/device/DeviceFolder.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <unistd.h>

namespace {

constexpr int startTimeoutMs = 5000;
constexpr int endTimeoutMs = 2000;
constexpr int firstSignalStatus = 128; // as in a shell

QStringList viewOfDevice(const DeviceFolder& folder)
{
    const QString bind = QStringLiteral("--bind");
    return QStringLiteral("--die-with-parent --ro-bind / / --dev /dev").split(' ') +
           QStringList{bind, folder.inputFolder(),   QStringLiteral("/dev/input"),
                       bind, folder.libraryFolder(), QStringLiteral("/var/lib"),
                       bind, folder.runFolder(),     QStringLiteral("/run")};
}

/// Keeps the executable visible if it is in a folder that the device's view hides.
QStringList viewOfExecutable(const QString& executable)
{
    for (const char* hidden : {"/dev/", "/var/lib/", "/run/"}) {
        if (executable.startsWith(QLatin1String(hidden))) {
            return {QStringLiteral("--ro-bind"), executable, executable};
        }
    }
    return {};
}

QStringList commandOf(const QString& executable, const DeviceOptions& options)
{
    const QStringList command = QStringList(executable) + options.daemonArguments;
    if (options.standardInput != DeviceOptions::StandardInput::Closed) {
        return command;
    }
    // The shell closes it last, so that no file opened by bubblewrap reuses its number.
    return QStringList{QStringLiteral("/bin/sh"), QStringLiteral("-c"),
                       QStringLiteral("exec \"$0\" \"$@\" <&-")} +
           command;
}

QProcessEnvironment environment(const QString& loggingRules)
{
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DBUS_SYSTEM_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS", "NOTIFY_SOCKET",
                             "QT_MESSAGE_PATTERN", "QT_LOGGING_CONF", "QT_LOGGING_DEBUG"}) {
        variables.remove(QLatin1String(name));
    }
    for (const QString& assignment : QStringLiteral(KEYBOARD_HANDLER_ENVIRONMENT).split(QLatin1Char(' '))) {
        variables.insert(assignment.section(QLatin1Char('='), 0, 0), assignment.section(QLatin1Char('='), 1));
    }
    variables.insert(QStringLiteral("QT_LOGGING_RULES"), loggingRules);
    // Otherwise the log would go to the journal of this machine.
    variables.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    return variables;
}

QByteArray readToEnd(int descriptor)
{
    QByteArray text;
    char buffer[512];
    pollfd poller{descriptor, POLLIN, 0};
    while (poll(&poller, 1, startTimeoutMs) == 1) {
        const ssize_t count = read(descriptor, buffer, sizeof buffer);
        if (count <= 0) {
            break;
        }
        text.append(buffer, int(count));
    }
    return text;
}

} // namespace

DaemonProcess::DaemonProcess(QObject* parent) : QObject(parent) {}

QString DaemonProcess::describeExit(int status)
{
    const char* name = sigabbrev_np(status - firstSignalStatus);
    const char* description = sigdescr_np(status - firstSignalStatus);
    if (!name || !description) {
        return QStringLiteral("The daemon has ended with status %1.").arg(status);
    }
    return QStringLiteral("The daemon was ended by the signal SIG%1 (%2).")
        .arg(QLatin1String(name), QString::fromLatin1(description).toLower());
}

QString DaemonProcess::start(const DeviceFolder& folder, const DeviceOptions& options)
{
    const QString executable = QFileInfo(options.daemon).canonicalFilePath();
    if (executable.isEmpty()) {
        return QStringLiteral("The daemon %1 does not exist.").arg(options.daemon);
    }
    makeProcess(options);

    // Bubblewrap reports the daemon's process id on this pipe.
    int report[2];
    if (pipe2(report, O_CLOEXEC) == -1) {
        return QStringLiteral("No file descriptor is available.");
    }
    m_process->inherit(report[1]);
    m_process->start(
        QStringLiteral("bwrap"),
        viewOfDevice(folder) + viewOfExecutable(executable) + options.viewArguments +
            QStringList{QStringLiteral("--info-fd"), QString::number(report[1]), QStringLiteral("--")} +
            commandOf(executable, options));
    m_process->waitForStarted(startTimeoutMs);
    close(report[1]);
    const QJsonObject info = QJsonDocument::fromJson(readToEnd(report[0])).object();
    close(report[0]);
    m_processId = info.value(QStringLiteral("child-pid")).toInt();
    if (m_processId == 0) {
        return QStringLiteral("bwrap did not start the daemon: ") + m_process->errorString();
    }
    return {};
}

void DaemonProcess::stop()
{
    if (!isRunning()) {
        return;
    }
    // A signal to the process id 0 would reach this process's whole group.
    if (m_processId != 0) {
        kill(pid_t(m_processId), SIGTERM);
        if (!m_process->waitForFinished(endTimeoutMs)) {
            kill(pid_t(m_processId), SIGKILL);
            m_process->waitForFinished(endTimeoutMs);
        }
    }
    m_process->end();
}

void DaemonProcess::typeLine(const QString& line)
{
    type(line.toUtf8() + '\n');
}

void DaemonProcess::type(const QByteArray& bytes)
{
    if (isRunning()) {
        m_process->write(bytes);
    }
}

void DaemonProcess::makeProcess(const DeviceOptions& options)
{
    m_process = std::make_unique<ChildProcess>();
    connect(m_process.get(), &QProcess::readyReadStandardError, this,
            [this] { readLines(QProcess::StandardError, &DaemonProcess::logLine); });
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this,
            [this] { readLines(QProcess::StandardOutput, &DaemonProcess::outputLine); });
    connect(m_process.get(), qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &DaemonProcess::exited);
    if (options.standardInput == DeviceOptions::StandardInput::Null) {
        m_process->setStandardInputFile(QProcess::nullDevice());
    }
    m_process->setProcessEnvironment(environment(options.loggingRules));
}

void DaemonProcess::readLines(QProcess::ProcessChannel channel, void (DaemonProcess::*report)(const QString&))
{
    m_process->setReadChannel(channel);
    while (m_process->canReadLine()) {
        const QByteArray line = m_process->readLine();
        (this->*report)(QString::fromUtf8(line.constData(), line.size() - 1)); // without the newline
    }
}

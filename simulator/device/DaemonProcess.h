// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"
#include "simulator/device/DeviceOptions.h"

#include <QObject>

#include <memory>

class DeviceFolder;

/// The daemon's executable, run in a simulated device's view of the file system.
class DaemonProcess : public QObject
{
    Q_OBJECT

public:
    explicit DaemonProcess(QObject* parent = nullptr);

    /// A sentence for a status of `exited`.
    static QString describeExit(int status);

    /// Starts the daemon. Returns a sentence about the error, or an empty string. Signals are emitted only
    /// from the event loop.
    QString start(const DeviceFolder& folder, const DeviceOptions& options);
    /// Ends a running daemon as the service manager would (SIGTERM, then SIGKILL after two seconds), and
    /// waits for its end.
    void stop();

    bool isRunning() const { return m_process && m_process->state() == QProcess::Running; }
    /// The process id of the daemon, not of bubblewrap; 0 before its start.
    qint64 processId() const { return m_processId; }

    void typeLine(const QString& line);
    /// The number of typed bytes that the daemon has not read yet.
    qint64 pendingInput() const { return m_process ? m_process->bytesToWrite() : 0; }
    /// Writes bytes that need not be whole lines.
    void type(const QByteArray& bytes);
    /// Closes the daemon's standard input.
    void endInput() { m_process->closeWriteChannel(); }

Q_SIGNALS:
    /// A line of the daemon's log.
    void logLine(const QString& line);
    /// A line of the daemon's standard output.
    void outputLine(const QString& line);
    /// The exit status, or 128 plus the number of the signal that ended the daemon.
    void exited(int status);

private:
    void makeProcess(const DeviceOptions& options);
    /// Reports each line of `channel` by the signal `report`.
    void readLines(QProcess::ProcessChannel channel, void (DaemonProcess::*report)(const QString&));

    std::unique_ptr<ChildProcess> m_process;
    qint64 m_processId = 0;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMutex>

/// Writes the log to standard error without ever waiting for its reader.
///
/// A terminal that is stopped, or a pipe that nobody empties, must not hold up the keys: lines that find no
/// room are dropped and counted, and the count is reported with the next line that does. Lines arrive whole.
class LogOutput
{
public:
    /// Takes over the log of the process from all threads, for good.
    static void install();

private:
    LogOutput();

    void writeLine(const QByteArray& line);
    bool flush();
    qint64 write(const char* data, qint64 size) const;

    QMutex m_mutex;
    int m_fd;
    bool m_isSocket;
    QByteArray m_rest; // of a line that was written in part
    int m_dropped = 0;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMutex>

/// Writes the log to standard error without being held up by its reader.
///
/// A terminal that is stopped, or a pipe that nobody empties, must not hold up the keys: when a line has
/// found no room for 100 ms, it and all further lines are dropped and counted until there is room again, and
/// the count is reported with the next line. Lines arrive whole.
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
    bool m_isStalled = false;
};

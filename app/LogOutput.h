// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMutex>
#include <QObject>

class QSocketNotifier;

/// Writes the log to standard error without ever waiting for its reader.
///
/// A terminal that is stopped, or a pipe that nobody empties, must not hold up the keys. Up to 1 MiB is kept
/// until there is room; lines beyond that are dropped and counted, and the count is reported before the next
/// line that is kept. Lines arrive whole and in order.
class LogOutput : public QObject
{
    Q_OBJECT

public:
    /// Takes over the log of the process, from all threads and for good. To be called on the main thread.
    static void install();

private:
    LogOutput();

    void writeLine(const QByteArray& line);
    void keep(const QByteArray& line);
    void writeKept();
    qint64 write(const QByteArray& bytes) const;
    void waitForRoom();
    void onRoom();

    QMutex m_mutex;
    int m_fd;
    bool m_isSocket;
    QByteArray m_kept;
    int m_dropped = 0;
    bool m_isWaiting = false;
    QSocketNotifier* m_notifier = nullptr;
};

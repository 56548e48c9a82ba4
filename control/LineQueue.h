// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMutex>
#include <QQueue>
#include <QThread>
#include <QWaitCondition>

#include <atomic>
#include <functional>

namespace control {

/// Writes lines without making the caller wait for a slow reader.
///
/// Lines arrive whole and in order. The queue holds up to 256 KiB; further lines are dropped and counted, and
/// the count is written before the next line that has room. Standard output may be shared with other
/// processes, so it is not made non-blocking: a thread writes.
class LineQueue : public QThread
{
    Q_OBJECT

public:
    /// `lossLine` makes the line that says how many were dropped.
    LineQueue(int descriptor, std::function<QByteArray(int)> lossLine);
    /// Waits at most a second for a reader; then what has not been written is lost.
    ~LineQueue() override;

    void add(const QByteArray& line);

Q_SIGNALS:
    /// The output can no longer be written; further lines are dropped.
    void broken();

protected:
    void run() override;

private:
    QByteArray next();

    const int m_descriptor;
    const std::function<QByteArray(int)> m_lossLine;
    QMutex m_mutex;
    QWaitCondition m_added;
    QQueue<QByteArray> m_lines;
    int m_size = 0;
    int m_dropped = 0;
    bool m_isEnding = false;
    std::atomic<bool> m_isWriting{false};
};

} // namespace control

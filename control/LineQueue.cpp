// SPDX-License-Identifier: MIT
#include "control/LineQueue.h"

#include <QMutexLocker>

#include <cerrno>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace control {

namespace {

constexpr int maxSize = 256 * 1024;
constexpr int endTimeoutMs = 1000;

bool writeAll(int descriptor, const QByteArray& bytes)
{
    int done = 0;
    while (done < bytes.size()) {
        const ssize_t count =
            ::write(descriptor, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (count < 0 && errno == EAGAIN) {
            // Another process that shares the output has made it non-blocking.
            pollfd room{descriptor, POLLOUT, 0};
            ::poll(&room, 1, -1);
        } else if (count < 0 && errno != EINTR) {
            return false;
        }
        done += count > 0 ? static_cast<int>(count) : 0;
    }
    return true;
}

} // namespace

LineQueue::LineQueue(int descriptor, std::function<QByteArray(int)> lossLine)
    : m_descriptor(descriptor), m_lossLine(std::move(lossLine))
{
    start();
}

LineQueue::~LineQueue()
{
    {
        const QMutexLocker locker(&m_mutex);
        m_isEnding = true;
        m_added.wakeAll();
    }
    // A thread without priority may need longer than a reader is given.
    while (!wait(endTimeoutMs)) {
        if (m_isWriting) {
            terminate();
        }
    }
}

void LineQueue::add(const QByteArray& line)
{
    const QMutexLocker locker(&m_mutex);
    if (m_size + line.size() > maxSize) {
        ++m_dropped;
        return;
    }
    if (m_dropped > 0) {
        m_lines.enqueue(m_lossLine(std::exchange(m_dropped, 0)));
        m_size += m_lines.last().size();
    }
    m_size += line.size();
    m_lines.enqueue(line);
    m_added.wakeAll();
}

void LineQueue::run()
{
    for (QByteArray line = next(); !line.isNull(); line = next()) {
        m_isWriting = true;
        const bool isWritten = writeAll(m_descriptor, line);
        m_isWriting = false;
        if (!isWritten) {
            Q_EMIT broken();
            return;
        }
    }
}

/// Waits for a line; null at the end. The count of dropped lines comes where they are missing.
QByteArray LineQueue::next()
{
    const QMutexLocker locker(&m_mutex);
    while (m_lines.isEmpty() && m_dropped == 0 && !m_isEnding) {
        m_added.wait(&m_mutex);
    }
    if (!m_lines.isEmpty()) {
        const QByteArray line = m_lines.dequeue();
        m_size -= line.size();
        return line;
    }
    const int dropped = std::exchange(m_dropped, 0);
    return dropped == 0 ? QByteArray() : m_lossLine(dropped);
}

} // namespace control

// SPDX-License-Identifier: MIT
#include "app/LogOutput.h"

#include <QMutexLocker>
#include <QString>

#include <cerrno>
#include <chrono>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

/// How long a line waits for room: a burst of lines fills a pipe faster than its reader empties it.
constexpr std::chrono::milliseconds patience = 100ms;

bool isSocket(int fd)
{
    struct stat status = {};
    return ::fstat(fd, &status) == 0 && S_ISSOCK(status.st_mode);
}

/// A description of its own for what standard error is, because the flag of the inherited one would hold for
/// all processes that share it. Sockets cannot be opened again and need none: they are told with each write.
int openWithoutWaiting()
{
    return ::open("/proc/self/fd/2", O_WRONLY | O_APPEND | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

bool waitForRoom(int fd)
{
    pollfd output = {fd, POLLOUT, 0};
    return ::poll(&output, 1, static_cast<int>(patience.count())) > 0;
}

} // namespace

void LogOutput::install()
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is an error of the write, not the end
    static auto* const output = new LogOutput;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
        output->writeLine(qFormatLogMessage(type, context, text).toLocal8Bit() + '\n');
    });
}

LogOutput::LogOutput() : m_fd(STDERR_FILENO), m_isSocket(isSocket(STDERR_FILENO))
{
    const int fd = m_isSocket ? -1 : openWithoutWaiting();
    if (fd != -1) {
        m_fd = fd;
    }
}

void LogOutput::writeLine(const QByteArray& line)
{
    const QMutexLocker locker(&m_mutex);
    if (!flush()) {
        ++m_dropped;
        return;
    }
    if (m_dropped > 0) {
        m_rest = QByteArray::number(m_dropped) + " log lines dropped: nobody read them.\n";
        m_dropped = 0;
    }
    m_rest += line;
    flush();
}

/// Whether all that was to be written is written, or can never be.
bool LogOutput::flush()
{
    while (!m_rest.isEmpty()) {
        const qint64 count = write(m_rest.constData(), m_rest.size());
        if (count >= 0) {
            m_rest.remove(0, static_cast<int>(count));
        } else if (errno == EAGAIN) {
            // Once for a reader that is only slow; one that has stopped is not waited for again.
            if (m_isStalled || !waitForRoom(m_fd)) {
                m_isStalled = true;
                return false;
            }
        } else if (errno != EINTR) {
            m_rest.clear();
        }
    }
    m_isStalled = false;
    return true;
}

qint64 LogOutput::write(const char* data, qint64 size) const
{
    const auto length = static_cast<size_t>(size);
    return m_isSocket ? ::send(m_fd, data, length, MSG_DONTWAIT | MSG_NOSIGNAL) : ::write(m_fd, data, length);
}

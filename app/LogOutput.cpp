// SPDX-License-Identifier: MIT
#include "app/LogOutput.h"

#include <QMutexLocker>
#include <QSocketNotifier>
#include <QString>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int mostKept = 1024 * 1024;

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

} // namespace

void LogOutput::install()
{
    std::signal(SIGPIPE, SIG_IGN); // a reader that went away is an error of the write, not the end
    static LogOutput& output = *new LogOutput;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
        output.writeLine(qFormatLogMessage(type, context, text).toLocal8Bit() + '\n');
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
    writeKept();
    keep(line);
    writeKept();
    if (!m_kept.isEmpty() && !m_isWaiting) {
        m_isWaiting = true;
        QMetaObject::invokeMethod(this, &LogOutput::waitForRoom, Qt::QueuedConnection);
    }
}

void LogOutput::keep(const QByteArray& line)
{
    if (!m_kept.isEmpty() && m_kept.size() + line.size() > mostKept) {
        ++m_dropped;
        return;
    }
    if (m_dropped > 0) {
        m_kept += QByteArray::number(m_dropped) + " log lines dropped: nobody read them.\n";
        m_dropped = 0;
    }
    m_kept += line;
}

void LogOutput::writeKept()
{
    int written = 0;
    while (written < m_kept.size()) {
        const qint64 count =
            write(QByteArray::fromRawData(m_kept.constData() + written, m_kept.size() - written));
        if (count > 0) {
            written += static_cast<int>(count);
        } else if (count == 0 || errno == EAGAIN) {
            break;
        } else if (errno != EINTR) {
            written = m_kept.size(); // there is nobody to write to
        }
    }
    m_kept.remove(0, written);
}

qint64 LogOutput::write(const QByteArray& bytes) const
{
    const auto size = static_cast<size_t>(bytes.size());
    return m_isSocket ? ::send(m_fd, bytes.constData(), size, MSG_DONTWAIT | MSG_NOSIGNAL)
                      : ::write(m_fd, bytes.constData(), size);
}

void LogOutput::waitForRoom()
{
    if (!m_notifier) {
        m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Write, this);
        connect(m_notifier, &QSocketNotifier::activated, this, &LogOutput::onRoom);
    }
    m_notifier->setEnabled(true);
}

void LogOutput::onRoom()
{
    const QMutexLocker locker(&m_mutex);
    writeKept();
    m_isWaiting = !m_kept.isEmpty();
    m_notifier->setEnabled(m_isWaiting);
}

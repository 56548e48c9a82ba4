// SPDX-License-Identifier: MIT
#include "app/LogOutput.h"

#include <QByteArray>
#include <QDeadlineTimer>
#include <QMutexLocker>
#include <QString>
#include <QWaitCondition>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int maxQueueSize = 1024 * 1024; // bytes
constexpr int maxDrainTime = 1000;        // milliseconds

class Output
{
public:
    void add(QByteArray line);
    void drain();

private:
    void enqueue(const QByteArray& line);
    void startWriter();
    [[noreturn]] void writeQueue();

    QMutex m_mutex;
    QWaitCondition m_changed;
    QByteArray m_queue;
    int m_unwritten = 0; // bytes in the queue or taken by the writer, but not yet written
    int m_dropped = 0;
    bool m_hasWriter = false;
};

void write(const char* bytes, int size)
{
    while (size > 0) {
        const auto written = static_cast<int>(::write(STDERR_FILENO, bytes, static_cast<size_t>(size)));
        if (written > 0) {
            bytes += written;
            size -= written;
        } else if (written == 0 || errno != EAGAIN) {
            return; // the line is lost: the reader is gone, or the disk is full
        } else {    // another process has made standard error non-blocking
            pollfd room{STDERR_FILENO, POLLOUT, 0};
            ::poll(&room, 1, -1);
        }
    }
}

void Output::add(QByteArray line)
{
    const QMutexLocker locker(&m_mutex);
    if (m_unwritten == 0) {
        // send() fails at once if standard error is not a socket.
        const ssize_t sent = ::send(STDERR_FILENO, line.constData(), static_cast<size_t>(line.size()),
                                    MSG_DONTWAIT | MSG_NOSIGNAL);
        line.remove(0, static_cast<int>(std::max<ssize_t>(sent, 0)));
    }
    enqueue(line);
}

void Output::drain()
{
    const QMutexLocker locker(&m_mutex);
    const QDeadlineTimer deadline(maxDrainTime);
    while (m_unwritten > 0 && m_changed.wait(&m_mutex, deadline)) {
    }
}

void Output::enqueue(const QByteArray& line)
{
    const QByteArray report = m_dropped > 0
                                  ? QByteArray::number(m_dropped) + " log lines dropped: nobody read them.\n"
                                  : QByteArray();
    const QByteArray text = report + line;
    if (m_unwritten > 0 && m_unwritten + text.size() > maxQueueSize) {
        ++m_dropped;
        return;
    }
    m_dropped = 0;
    m_queue += text;
    m_unwritten += text.size();
    if (m_unwritten > 0) {
        startWriter();
        m_changed.wakeAll();
    }
}

/// If the thread cannot be created, lines stay in the queue and the next line tries again.
void Output::startWriter()
{
    const auto run = [](void* output) -> void* {
        static_cast<Output*>(output)->writeQueue();
        return nullptr;
    };
    pthread_t writer;
    m_hasWriter = m_hasWriter || ::pthread_create(&writer, nullptr, run, this) == 0;
}

void Output::writeQueue()
{
    // Neither a terminal that stops background writers nor a file size limit may stop the daemon.
    sigset_t signals;
    sigfillset(&signals);
    ::pthread_sigmask(SIG_SETMASK, &signals, nullptr);
    QMutexLocker locker(&m_mutex);
    while (true) {
        const QByteArray lines = std::exchange(m_queue, {});
        // Line by line: a pipe keeps a line whole among those of other writers.
        for (int begin = 0; begin < lines.size();) {
            const int size = lines.indexOf('\n', begin) + 1 - begin;
            locker.unlock();
            write(lines.constData() + begin, size);
            locker.relock();
            begin += size;
            m_unwritten -= size;
        }
        if (m_unwritten == 0 && m_dropped > 0) {
            enqueue({});
        }
        m_changed.wakeAll();
        while (m_queue.isEmpty()) {
            m_changed.wait(&m_mutex);
        }
    }
}

} // namespace

void LogOutput::install()
{
    std::signal(SIGPIPE, SIG_IGN); // a missing reader is a write error, not the end of the process
    // Never destroyed, because the writer uses it until the process ends.
    static Output& output = *new Output;
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
        const QString line = qFormatLogMessage(type, context, text);
        if (!line.isNull()) { // null: filtered out by the message pattern
            output.add(line.toLocal8Bit() + '\n');
        }
        if (type == QtFatalMsg) {
            output.drain();
        }
    });
    std::atexit([] { output.drain(); });
}

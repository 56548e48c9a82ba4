// SPDX-License-Identifier: MIT
#include <ls/ConsoleReader.h>

#include <QDebug>
#include <QPointer>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace ls {

namespace {

constexpr int longestLine = 64 * 1024;
// A moment's work of lines, so that keys need not wait for the end of a flood.
constexpr int chunkSize = 256;
constexpr char lineEnd = '\n';
constexpr char carriageReturn = '\r';

// What was inherited cannot be close-on-exec. If descriptor 0 is, standard input was closed at the start
// and the number went to a file or socket that this process opened itself.
bool isStandardInputOpen()
{
    const int flags = ::fcntl(STDIN_FILENO, F_GETFD);
    return flags != -1 && (flags & FD_CLOEXEC) == 0;
}

// Standard input is shared with other processes, which may have taken what was reported as readable;
// for the same reason it cannot be made non-blocking.
bool isReadable()
{
    pollfd input = {STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) > 0;
}

int contentSize(const QByteArray& line)
{
    return line.size() - (line.endsWith(carriageReturn) ? 1 : 0);
}

} // namespace

ConsoleReader::ConsoleReader(QObject* parent)
    : QObject(parent), m_notifier(STDIN_FILENO, QSocketNotifier::Read, this)
{
    m_notifier.setEnabled(isStandardInputOpen());
    connect(&m_notifier, &QSocketNotifier::activated, this, &ConsoleReader::readInput);
}

void ConsoleReader::readInput()
{
    if (!isReadable()) {
        return;
    }
    char chunk[chunkSize];
    const ssize_t count = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (count > 0) {
        m_buffer.append(chunk, static_cast<int>(count));
        deliverLines();
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
        m_notifier.setEnabled(false);
        m_buffer.clear();
    }
}

// Whoever receives a line may delete this object, or run an event loop that reads on: each line is
// therefore taken out of the buffer before it is reported, and nothing else is remembered meanwhile.
void ConsoleReader::deliverLines()
{
    const QPointer<ConsoleReader> self(this);
    for (int end = nextLineEnd(); end != -1; end = nextLineEnd()) {
        const QByteArray line = m_buffer.left(end);
        m_buffer.remove(0, end + 1);
        m_searched = 0;
        finishLine(line);
        if (!self) {
            return;
        }
    }
    dropOverlongLine();
}

// A long line comes in many chunks: what has been searched is not searched again.
int ConsoleReader::nextLineEnd()
{
    const int end = m_buffer.indexOf(lineEnd, m_searched);
    m_searched = m_buffer.size();
    return end;
}

void ConsoleReader::finishLine(const QByteArray& line)
{
    const int size = contentSize(line);
    const bool reported = std::exchange(m_overlong, false);
    if (!reported && size <= longestLine) {
        Q_EMIT textReceived(QString::fromUtf8(line.constData(), size));
    } else if (!reported) {
        reportOverlongLine();
    }
}

void ConsoleReader::dropOverlongLine()
{
    if (!m_overlong && contentSize(m_buffer) <= longestLine) {
        return;
    }
    if (!m_overlong) {
        reportOverlongLine();
    }
    m_overlong = true;
    m_buffer.clear();
    m_searched = 0;
}

void ConsoleReader::reportOverlongLine()
{
    qCritical() << "ls::ConsoleReader::readInput ERROR: line over" << longestLine << "bytes dropped.";
}

} // namespace ls

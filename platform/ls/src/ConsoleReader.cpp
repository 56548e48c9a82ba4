// SPDX-License-Identifier: MIT
#include <ls/ConsoleReader.h>

#include <QDebug>
#include <QList>

#include <cerrno>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace ls {

namespace {

constexpr int maxLineLength = 64 * 1024;
// Small, so that key events are handled between the chunks of a long input.
constexpr int chunkSize = 256;
constexpr char lineEnd = '\n';
constexpr char carriageReturn = '\r';

// Standard input is shared with other processes: it must not be made non-blocking, and another process may
// already have read the input that the notifier reported.
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
        take(QByteArray(chunk, static_cast<int>(count)));
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
        m_notifier.setEnabled(false);
        m_line.clear();
    }
}

void ConsoleReader::take(const QByteArray& chunk)
{
    QList<QByteArray> pieces = chunk.split(lineEnd);
    const QByteArray rest = pieces.takeLast();
    for (const QByteArray& piece : qAsConst(pieces)) {
        append(piece);
        finishLine();
    }
    append(rest);
}

void ConsoleReader::append(const QByteArray& piece)
{
    if (m_isOverlong) {
        return;
    }
    m_line += piece;
    if (contentSize(m_line) > maxLineLength) {
        qCritical() << "ls::ConsoleReader::readInput ERROR: line over" << maxLineLength << "bytes dropped.";
        m_isOverlong = true;
        m_line.clear();
    }
}

void ConsoleReader::finishLine()
{
    const QByteArray line = std::exchange(m_line, QByteArray());
    if (!std::exchange(m_isOverlong, false)) {
        Q_EMIT textReceived(QString::fromUtf8(line.constData(), contentSize(line)));
    }
}

} // namespace ls

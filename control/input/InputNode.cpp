// SPDX-License-Identifier: MIT
#include "control/input/InputNode.h"

#include "control/Monotonic.h"

#include <ls/KeyEvent.h>

#include <QFile>
#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

using std::chrono::microseconds;
using std::chrono::milliseconds;

namespace control {

namespace {

constexpr int recordSize = sizeof(input_event);
constexpr size_t maxReadSize = 64 * sizeof(input_event);
/// Reads before the event loop continues: a flood of records must not keep the process from its other work.
constexpr int maxReads = 16;
constexpr milliseconds searchInterval{250};
constexpr int bitsPerByte = 8;

microseconds stampOf(const input_event& event)
{
    return std::chrono::seconds(event.input_event_sec) + microseconds(event.input_event_usec);
}

} // namespace

InputNode::InputNode(int keyboard, const QString& path, QObject* parent)
    : QObject(parent), m_keyboard(keyboard), m_path(path)
{
    m_search.setInterval(searchInterval);
    connect(&m_search, &QTimer::timeout, this, &InputNode::lookForNode);
}

InputNode::~InputNode()
{
    close();
}

int InputNode::open()
{
    do {
        m_fd = ::open(QFile::encodeName(m_path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    } while (m_fd == -1 && errno == EINTR);
    if (m_fd == -1) {
        return errno;
    }
    int clock = CLOCK_MONOTONIC;
    m_isStamped = ::ioctl(m_fd, EVIOCSCLOCKID, &clock) == 0;
    m_isSkipping = false;
    m_partial.clear();
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { readSome(); });
    return 0;
}

std::optional<QVector<quint16>> InputNode::keysDown() const
{
    std::array<unsigned char, KEY_MAX / bitsPerByte + 1> bits{};
    if (!isOpen() || ::ioctl(m_fd, EVIOCGKEY(bits.size()), bits.data()) == -1) {
        return std::nullopt;
    }
    QVector<quint16> keys;
    for (quint16 code = 0; code <= KEY_MAX; ++code) {
        if ((bits.at(code / bitsPerByte) >> (code % bitsPerByte) & 1) != 0) {
            keys.append(code);
        }
    }
    return keys;
}

void InputNode::readSome()
{
    for (int reads = 0; reads < maxReads && isOpen() && takeBytes(); ++reads) {
    }
}

/// Returns whether more may be there.
bool InputNode::takeBytes()
{
    std::array<char, maxReadSize> bytes;
    const ssize_t size = ::read(m_fd, bytes.data(), bytes.size());
    if (size == -1 && (errno == EAGAIN || errno == EINTR)) {
        return errno == EINTR;
    }
    // A node without its device reports an error or an end forever, so it must not be watched any longer.
    if (size <= 0) {
        loseNode();
        return false;
    }
    m_partial.append(bytes.data(), static_cast<int>(size));
    // A receiver of the signals may run the event loop and with it this function.
    while (m_partial.size() >= recordSize) {
        input_event event{};
        std::memcpy(&event, m_partial.constData(), sizeof event);
        m_partial.remove(0, recordSize);
        take(event);
    }
    return true;
}

/// The kernel drops the rest of a report as well, so that a report that was dropped in part has no meaning.
void InputNode::take(const input_event& event)
{
    const microseconds at = m_isStamped ? stampOf(event) : Monotonic::now();
    if (event.type == EV_SYN && event.code == SYN_DROPPED) {
        m_isSkipping = true;
        return reportGap(InputGap::Reason::Dropped, at);
    }
    if (m_isSkipping) {
        m_isSkipping = event.type != EV_SYN || event.code != SYN_REPORT;
        return;
    }
    Q_EMIT recorded({m_keyboard, at, event.type, event.code, event.value});
}

void InputNode::reportGap(InputGap::Reason reason, microseconds at)
{
    Q_EMIT gapFound({m_keyboard, at, reason});
}

void InputNode::close()
{
    m_notifier.reset();
    if (isOpen()) {
        ::close(m_fd);
        m_fd = -1;
    }
}

void InputNode::loseNode()
{
    // The notifier whose signal is being delivered must outlive this call.
    m_notifier->setEnabled(false);
    m_notifier.release()->deleteLater();
    close();
    m_search.start();
    reportGap(InputGap::Reason::Vanished, Monotonic::now());
}

void InputNode::lookForNode()
{
    if (open() == 0) {
        m_search.stop();
        reportGap(InputGap::Reason::Returned, Monotonic::now());
    }
}

} // namespace control

// SPDX-License-Identifier: MIT
#include "input/Keyboard.h"

#include "vocabulary/Vocabulary.h"

#include <ls/Identifiers.h>

#include <QSocketNotifier>

#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr size_t recordSize = sizeof(input_event);
constexpr size_t recordsPerRead = 32;
constexpr mode_t openMode = 0777;
constexpr ssize_t expectedWriteCount = 28;
constexpr int noNumber = std::numeric_limits<int>::min();
constexpr int noValue = -1;

// The kernel's record has 32-bit times on the 32-bit target and 64-bit ones on 64-bit hosts.
static_assert(recordSize == 2 * sizeof(__kernel_ulong_t) + 8, "unexpected layout of the input record");

template <typename Call>
auto retryInterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

} // namespace

Keyboard::Keyboard(QObject* parent) : Keyboard(QString(), parent) {}

Keyboard::Keyboard(const QString& device, QObject* parent) : QObject(parent), m_device(device) {}

Keyboard::~Keyboard()
{
    if (isOpen()) {
        delete m_notifier;
        retryInterrupted([this] { return ::close(m_fd); });
    }
}

ls::EnumKey Keyboard::keyOf(const ls::KeyEvent& event)
{
    if (!event.isKey()) {
        return ls::KeyId::Unknown;
    }
    return ls::KeyId::meta.key(event.code(), vocabulary::undefined);
}

bool Keyboard::isOpen() const
{
    return m_fd != -1;
}

void Keyboard::setDevice(const QString& device)
{
    m_device = device;
}

bool Keyboard::open()
{
    if (m_device.isEmpty()) {
        LOG_WARNING() << "No device specified.";
        return false;
    }
    const QByteArray path = m_device.toLocal8Bit();
    m_fd = retryInterrupted(
        [&path] { return ::open(path.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC, openMode); });
    if (m_fd == -1) {
        m_errorString = describe("Unable to open device %1: %2", errno);
        LOG_ERROR().noquote() << m_errorString;
        return false;
    }
    m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &Keyboard::readEvents);
    return true;
}

bool Keyboard::write(const ls::KeyEvent& event)
{
    const ssize_t written =
        retryInterrupted([this, &event] { return ::write(m_fd, &event.event(), recordSize); });
    if (written == -1) {
        m_errorString = describe("Error writing to device %1: %2", errno);
        LOG_ERROR().noquote() << m_errorString;
        return false;
    }
    // Deliberate: a record never has the expected size, so that every write is reported as partial.
    if (written != expectedWriteCount) {
        LOG_ERROR().noquote() << QStringLiteral("Partial write to device %1.").arg(m_device);
        return false;
    }
    return true;
}

bool Keyboard::simulateKey(const ls::EnumKey& key, const ls::EnumKey& action)
{
    const int value = ls::KeyActionId::meta.value(action, noNumber);
    if (value == noValue) {
        LOG_ERROR() << "Key value is invalid!";
        return false;
    }
    // Deliberate: an unknown key or action is not rejected, but emitted with these numbers.
    input_event record{};
    record.type = EV_KEY;
    record.code = static_cast<quint16>(ls::KeyId::meta.value(key, noNumber));
    record.value = value;
    Q_EMIT event(ls::KeyEvent(record));
    return true;
}

void Keyboard::setLastEvent(const ls::KeyEvent& event)
{
    m_lastEvent = event;
}

void Keyboard::setFilter(const Filter& filter)
{
    m_filter = filter;
}

void Keyboard::readEvents(int fd)
{
    input_event records[recordsPerRead];
    for (;;) {
        const ssize_t size = retryInterrupted([&] { return ::read(fd, records, sizeof records); });
        if (size == -1 && errno == EAGAIN) {
            return;
        }
        // Deliberate: the device stays watched after an error or an end of file, because it may recover. A
        // device that is gone for good is logged again and again.
        if (size == -1) {
            m_errorString = describe("Error reading from device %1: %2", errno);
            LOG_ERROR().noquote() << m_errorString;
            return;
        }
        if (size == 0) {
            LOG_WARNING() << "Reading from device returned 0.";
            return;
        }
        for (size_t i = 0; i < static_cast<size_t>(size) / recordSize; ++i) {
            const ls::KeyEvent keyEvent(records[i]);
            if (!m_filter || m_filter(keyEvent)) {
                Q_EMIT event(keyEvent);
            }
        }
    }
}

QString Keyboard::describe(const char* problem, int error) const
{
    return QString::fromLatin1(problem).arg(m_device, QString::fromLocal8Bit(std::strerror(error)));
}

// SPDX-License-Identifier: MIT
#include "simulator/panel/ByteSink.h"

#include <QFile>

#include <cerrno>
#include <numeric>

#include <fcntl.h>
#include <unistd.h>

ByteSink::ByteSink(QObject* parent) : QObject(parent) {}

ByteSink::~ByteSink()
{
    m_notifier.reset();
    if (m_descriptor != -1) {
        close(m_descriptor);
    }
}

bool ByteSink::open(const QString& path)
{
    // Also open for reading, so that the FIFO opens without a reader and survives the loss of one.
    m_descriptor = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
    if (m_descriptor == -1) {
        return false;
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Write);
    m_notifier->setEnabled(false);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] { writePending(); });
    return true;
}

void ByteSink::write(const QByteArray& bytes)
{
    if (m_descriptor == -1) {
        return;
    }
    m_pending.enqueue(bytes);
    writePending();
}

int ByteSink::pending() const
{
    return std::accumulate(m_pending.begin(), m_pending.end(), 0,
                           [](int sum, const QByteArray& bytes) { return sum + bytes.size(); });
}

void ByteSink::writePending()
{
    // Separate writes, because the FIFO accepts a larger one in part, and the reader would drop the
    // incomplete record.
    while (!m_pending.isEmpty()) {
        QByteArray& bytes = m_pending.head();
        const ssize_t written = ::write(m_descriptor, bytes.constData(), size_t(bytes.size()));
        if (written == -1 && errno == EINTR) {
            continue;
        }
        if (written == -1) {
            break;
        }
        bytes.remove(0, int(written));
        if (bytes.isEmpty()) {
            m_pending.dequeue();
        }
    }
    m_notifier->setEnabled(!m_pending.isEmpty());
}

// SPDX-License-Identifier: MIT
#include "workbench/web/EventStream.h"

#include <algorithm>

namespace {

constexpr int maxEvents = 2000;
constexpr int maxSizeOfEvents = 4 * 1024 * 1024;

} // namespace

EventStream::EventStream(const QByteArray& snapshot) : m_text(snapshot) {}

bool EventStream::add(const QByteArray& event)
{
    if (m_events.size() >= maxEvents || m_size + event.size() > maxSizeOfEvents) {
        close();
    }
    if (m_isOpen) {
        m_size += event.size();
        m_events.append(event);
        Q_EMIT changed();
    }
    return m_isOpen;
}

void EventStream::close()
{
    m_isOpen = false;
    Q_EMIT closed();
}

int EventStream::take(char* data, int maxSize)
{
    if (m_taken == m_text.size()) {
        m_text = m_events.join();
        m_taken = 0;
        m_events.clear();
        m_size = 0;
    }
    const int size = std::min(maxSize, m_text.size() - m_taken);
    std::copy_n(m_text.constData() + m_taken, size, data);
    m_taken += size;
    return size;
}

// SPDX-License-Identifier: MIT
#include "workbench/web/EventStream.h"

#include <httplib.h>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr int maximumEvents = 2000;
constexpr int maximumBytes = 4 * 1024 * 1024;
// In pieces, so that a slow client has time for a long history, and the end of the stream is seen between
// them.
constexpr int pieceSize = 64 * 1024;
constexpr auto keepAliveTime = 15s;
// How soon it is seen that a client has gone away without a word.
constexpr auto watchTime = 250ms;

const QByteArray keepAliveLine = QByteArrayLiteral(":\n\n");

} // namespace

EventStream::EventStream(int client, const QByteArray& snapshot)
    : m_client(client), m_snapshot(snapshot), m_keepAlive(keepAliveTime)
{}

bool EventStream::add(const QByteArray& event)
{
    const std::lock_guard lock(m_mutex);
    if (m_events.size() >= maximumEvents || m_bytes + event.size() > maximumBytes) {
        closeLocked();
    }
    if (!m_open) {
        return false;
    }
    m_bytes += event.size();
    m_events.append(event);
    m_changed.notify_one();
    return true;
}

void EventStream::close()
{
    const std::lock_guard lock(m_mutex);
    closeLocked();
}

bool EventStream::writeTo(httplib::DataSink& sink)
{
    if (!fetch() || !sink.is_writable()) {
        return false;
    }
    if (m_text.isEmpty() && m_keepAlive.hasExpired()) {
        m_text = keepAliveLine;
    }
    if (m_text.isEmpty()) {
        return true;
    }
    m_keepAlive = QDeadlineTimer(keepAliveTime);
    const int size = std::min(pieceSize, m_text.size() - m_written);
    const bool isWritten = sink.write(m_text.constData() + m_written, size_t(size));
    m_written += size;
    return isWritten;
}

/// Provides the next text once the last one is written; waits a little for it. False when the stream is over.
bool EventStream::fetch()
{
    std::unique_lock lock(m_mutex);
    if (m_open && m_written == m_text.size()) {
        m_changed.wait_for(lock, watchTime,
                           [this] { return !m_open || !m_snapshot.isEmpty() || !m_events.isEmpty(); });
        m_text = m_snapshot + m_events.join();
        m_written = 0;
        m_snapshot.clear();
        m_events.clear();
        m_bytes = 0;
    }
    return m_open;
}

void EventStream::closeLocked()
{
    m_open = false;
    m_snapshot.clear();
    m_events.clear();
    m_changed.notify_one();
}

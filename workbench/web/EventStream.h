// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QDeadlineTimer>

#include <condition_variable>
#include <mutex>

namespace httplib {
class DataSink;
} // namespace httplib

/// The events that wait for one client. They are added on the main thread, which never waits, and written
/// on a thread of the server.
class EventStream
{
public:
    /// `snapshot` is sent first, whatever its size.
    EventStream(int client, const QByteArray& snapshot);

    int client() const { return m_client; }

    /// False when the client has fallen too far behind; the stream is over then.
    bool add(const QByteArray& event);
    void close();

    /// Writes a piece of what is there, for which it waits a little. False when the stream is over or the
    /// client is gone.
    bool writeTo(httplib::DataSink& sink);

private:
    void closeLocked();
    bool fetch();

    const int m_client;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_open = true;
    QByteArray m_snapshot;
    QByteArrayList m_events;
    int m_bytes = 0;

    // For the writing thread alone.
    QByteArray m_text;
    int m_written = 0;
    QDeadlineTimer m_keepAlive;
};

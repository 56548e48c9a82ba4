// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"
#include "workbench/web/EntryHistory.h"
#include "workbench/web/EventStream.h"

#include <QMap>
#include <QTimer>

#include <memory>

class Session;

/// The event streams of all clients. Each begins with a snapshot, and continues with each entry that the
/// session adds: none is missing between, and none comes twice.
class EventStreams : public QObject
{
    Q_OBJECT

public:
    /// `session` must live as long as the streams.
    explicit EventStreams(Session& session, QObject* parent = nullptr);

    /// A stream for a new client; null when there are too many.
    std::shared_ptr<EventStream> open();
    bool contains(int client) const { return m_streams.contains(client); }
    /// Ends all streams; the keys that their clients hold are released.
    void closeAll();

private:
    void close(int client);
    QByteArray snapshotFor(int client) const;
    void publish(const SessionEntry& entry);
    void send(const QByteArray& event);

    Session& m_session;
    EntryHistory m_history;
    /// By their clients.
    QMap<int, std::shared_ptr<EventStream>> m_streams;
    QTimer m_commentTimer;
    int m_lastClient = 0;
};

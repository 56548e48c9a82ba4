// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"
#include "workbench/web/EntryHistory.h"
#include "workbench/web/EventStream.h"

#include <QObject>
#include <QVector>

#include <memory>

class Session;

/// The event streams of all clients. Each begins with what there is, and goes on with each entry that the
/// session adds: none is missing between, and none comes twice. Main thread only.
class EventStreams : public QObject
{
    Q_OBJECT

public:
    /// `session` must live as long as the streams.
    explicit EventStreams(Session& session, QObject* parent = nullptr);

    /// A stream for a new client; null when there are too many.
    std::shared_ptr<EventStream> open();
    bool contains(int client) const;
    /// The client goes, and releases the keys that it holds.
    void close(int client);
    void closeAll();

private:
    QByteArray snapshotFor(int client) const;
    void publish(const SessionEntry& entry);

    Session& m_session;
    EntryHistory m_history;
    QVector<std::shared_ptr<EventStream>> m_streams;
    int m_lastClient = 0;
};

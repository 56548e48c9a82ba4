// SPDX-License-Identifier: MIT
#pragma once

#include "tests/workbench/web/HttpClient.h"

#include <QVector>

/// A client of the event stream, as a page is one.
class EventReader
{
public:
    struct Event
    {
        QByteArray name;
        QByteArray id;
        QJsonObject data;
    };

    /// Waits for the answer to its request.
    explicit EventReader(quint16 port);

    HttpClient& connection() { return m_connection; }
    /// The beginning of the answer, as far as it has come.
    HttpReply reply();
    /// The events that have come whole.
    const QVector<Event>& events();
    /// The "id" of each entry that came after the snapshot.
    QVector<int> entryIds();
    /// The number that the snapshot gave this client; 0 while there is none.
    int client();
    bool awaitEvents(int count);

private:
    void joinChunks();

    HttpClient m_connection;
    /// How much of what was received has been joined.
    int m_joined = 0;
    QByteArray m_content;
    QVector<Event> m_events;
};

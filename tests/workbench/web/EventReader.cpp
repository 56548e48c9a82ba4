// SPDX-License-Identifier: MIT
#include "tests/workbench/web/EventReader.h"

#include "tests/support/Waiting.h"

#include <QJsonDocument>
#include <QtTest>

namespace {

EventReader::Event parseEvent(const QByteArray& text)
{
    EventReader::Event event;
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith("event: ")) {
            event.name = line.mid(7);
        } else if (line.startsWith("id: ")) {
            event.id = line.mid(4);
        } else if (line.startsWith("data: ")) {
            event.data = QJsonDocument::fromJson(line.mid(6)).object();
        }
    }
    return event;
}

} // namespace

EventReader::EventReader(quint16 port) : m_connection(port)
{
    m_connection.send("GET /api/events HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port) + "\r\n\r\n");
    const auto isAnswered = [this] { return reply().status == 200 ? client() != 0 : reply().status != 0; };
    WAIT_FOR(isAnswered());
}

HttpReply EventReader::reply()
{
    // The head and what follows at once will do.
    return HttpReply::parse(m_connection.received().left(10'000));
}

const QVector<EventReader::Event>& EventReader::events()
{
    joinChunks();
    int begin = 0;
    for (int end = m_content.indexOf("\n\n"); end != -1; end = m_content.indexOf("\n\n", begin)) {
        const Event event = parseEvent(m_content.mid(begin, end - begin));
        if (!event.name.isEmpty()) {
            m_events.append(event);
        }
        begin = end + 2;
    }
    m_content.remove(0, begin);
    return m_events;
}

QVector<int> EventReader::entryIds()
{
    QVector<int> ids;
    for (const Event& event : events()) {
        if (event.name == "entry") {
            ids.append(event.data.value(QStringLiteral("id")).toInt());
        }
    }
    return ids;
}

int EventReader::client()
{
    return events().value(0).data.value(QStringLiteral("client")).toInt();
}

bool EventReader::awaitEvents(int count)
{
    WAIT_FOR(events().size() >= count || !m_connection.isConnected());
    return events().size() >= count;
}

void EventReader::joinChunks()
{
    const QByteArray& bytes = m_connection.received();
    if (m_joined == 0) {
        const int head = bytes.indexOf("\r\n\r\n");
        m_joined = head == -1 ? 0 : head + 4;
    }
    while (m_joined > 0) {
        const int line = bytes.indexOf("\r\n", m_joined);
        const int size = line == -1 ? 0 : bytes.mid(m_joined, line - m_joined).toInt(nullptr, 16);
        if (size == 0 || bytes.size() < line + 2 + size + 2) {
            break;
        }
        m_content += bytes.mid(line + 2, size);
        m_joined = line + 2 + size + 2;
    }
}

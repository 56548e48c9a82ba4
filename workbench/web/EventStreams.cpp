// SPDX-License-Identifier: MIT
#include "workbench/web/EventStreams.h"

#include "workbench/session/Session.h"
#include "workbench/web/SessionJson.h"

#include <QJsonDocument>

using namespace std::chrono_literals;

namespace {

constexpr int maxStreams = 10;
constexpr auto commentInterval = 15s;

QByteArray toText(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

EventStreams::EventStreams(Session& session, QObject* parent) : QObject(parent), m_session(session)
{
    connect(&session, &Session::added, this, &EventStreams::publish);
    // Shows the readers that the server is there, and the server a reader that is not.
    connect(&m_commentTimer, &QTimer::timeout, this, [this] { send(":\n\n"); });
    m_commentTimer.start(commentInterval);
}

std::shared_ptr<EventStream> EventStreams::open()
{
    if (m_streams.size() >= maxStreams) {
        return nullptr;
    }
    const int client = ++m_lastClient;
    const auto stream = std::make_shared<EventStream>(snapshotFor(client));
    m_streams.insert(client, stream);
    // Later: the keys that it releases are entries themselves.
    const auto leave = [this, client] { close(client); };
    connect(stream.get(), &EventStream::abandoned, this, leave, Qt::QueuedConnection);
    return stream;
}

void EventStreams::closeAll()
{
    while (!m_streams.isEmpty()) {
        close(m_streams.firstKey());
    }
}

void EventStreams::close(int client)
{
    if (const std::shared_ptr<EventStream> stream = m_streams.take(client)) {
        stream->close();
        m_session.releaseKeysOf(client);
    }
}

QByteArray EventStreams::snapshotFor(int client) const
{
    QByteArray snapshot = toText({{QStringLiteral("client"), client},
                                  {QStringLiteral("at"), qint64(m_session.now().count())},
                                  {QStringLiteral("device"), SessionJson::description(m_session)}});
    snapshot.chop(1);
    // "retry": a page whose connection was lost reconnects after a second.
    return "retry: 1000\nevent: snapshot\ndata: " + snapshot + ",\"history\":" + m_history.toJson() + "}\n\n";
}

void EventStreams::publish(const SessionEntry& entry)
{
    const QByteArray text = toText(SessionJson::entry(entry));
    m_history.add(text);
    send("event: entry\nid: " + QByteArray::number(entry.id) + "\ndata: " + text + "\n\n");
}

void EventStreams::send(const QByteArray& event)
{
    for (const std::shared_ptr<EventStream>& stream : qAsConst(m_streams)) {
        stream->add(event);
    }
}

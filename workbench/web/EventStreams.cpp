// SPDX-License-Identifier: MIT
#include "workbench/web/EventStreams.h"

#include "workbench/session/Session.h"
#include "workbench/web/SessionJson.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int maximumStreams = 10;

QByteArray toText(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

EventStreams::EventStreams(Session& session, QObject* parent) : QObject(parent), m_session(session)
{
    connect(&session, &Session::added, this, &EventStreams::publish);
}

std::shared_ptr<EventStream> EventStreams::open()
{
    if (m_streams.size() >= maximumStreams) {
        return nullptr;
    }
    ++m_lastClient;
    m_streams.append(std::make_shared<EventStream>(m_lastClient, snapshotFor(m_lastClient)));
    return m_streams.constLast();
}

bool EventStreams::contains(int client) const
{
    return std::any_of(m_streams.begin(), m_streams.end(),
                       [client](const auto& stream) { return stream->client() == client; });
}

void EventStreams::close(int client)
{
    const auto found = std::find_if(m_streams.begin(), m_streams.end(),
                                    [client](const auto& stream) { return stream->client() == client; });
    if (found == m_streams.end()) {
        return;
    }
    (*found)->close();
    m_streams.erase(found);
    m_session.releaseKeysOf(client);
}

void EventStreams::closeAll()
{
    while (!m_streams.isEmpty()) {
        close(m_streams.constFirst()->client());
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
    const QByteArray event = "event: entry\nid: " + QByteArray::number(entry.id) + "\ndata: " + text + "\n\n";
    for (const std::shared_ptr<EventStream>& stream : qAsConst(m_streams)) {
        if (!stream->add(event)) {
            // Later: the keys that it releases are entries themselves.
            QMetaObject::invokeMethod(
                this, [this, client = stream->client()] { close(client); }, Qt::QueuedConnection);
        }
    }
}

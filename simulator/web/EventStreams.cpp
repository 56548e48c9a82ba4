// SPDX-License-Identifier: MIT
#include "simulator/web/EventStreams.h"

#include "simulator/session/DeviceSession.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int maximumStreams = 10;

QByteArray asData(const QJsonObject& object)
{
    return "data: " + QJsonDocument(object).toJson(QJsonDocument::Compact) + "\n\n";
}

QByteArray snapshotOf(const DeviceSession& session, int client)
{
    // "retry": a page whose connection was lost comes back after a second.
    return "retry: 1000\nevent: snapshot\n" + asData({{QStringLiteral("client"), client},
                                                      {QStringLiteral("at"), qint64(session.now().count())},
                                                      {QStringLiteral("device"), session.description()},
                                                      {QStringLiteral("history"), session.history()}});
}

} // namespace

EventStreams::EventStreams(DeviceSession& session, QObject* parent) : QObject(parent), m_session(session)
{
    connect(&session, &DeviceSession::added, this, &EventStreams::publish);
}

std::shared_ptr<EventStream> EventStreams::open()
{
    if (m_streams.size() >= maximumStreams) {
        return nullptr;
    }
    ++m_lastClient;
    m_streams.append(std::make_shared<EventStream>(m_lastClient, snapshotOf(m_session, m_lastClient)));
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

void EventStreams::publish(const QJsonObject& entry)
{
    const QByteArray event =
        "event: entry\nid: " + QByteArray::number(entry.value(QStringLiteral("id")).toDouble(), 'f', 0) +
        '\n' + asData(entry);
    for (const std::shared_ptr<EventStream>& stream : qAsConst(m_streams)) {
        if (!stream->add(event)) {
            // Later: the keys that it releases are entries themselves.
            QMetaObject::invokeMethod(
                this, [this, client = stream->client()] { close(client); }, Qt::QueuedConnection);
        }
    }
}

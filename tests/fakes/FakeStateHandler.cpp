// SPDX-License-Identifier: MIT
#include "tests/fakes/FakeStateHandler.h"

#include <ls/DBusService.h>
#include <ls/DBusServiceStore.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QDBusMessage>

namespace {

QVariantMap g_reply;
QList<QVariantMap> g_requests;

} // namespace

namespace FakeStateHandler {

void setState(const QString& state)
{
    setReply({{ls::resultIdKey, ls::ResultId::Success},
              {ls::errorIdKey, QStringLiteral("Undefined")},
              {ls::stateIdKey, state}});
}

void setReply(const QVariantMap& reply)
{
    g_reply = reply;
}

QList<QVariantMap> takeRequests()
{
    return std::exchange(g_requests, {});
}

void announce(const QString& state)
{
    notify({{ls::notificationIdKey, ls::StateHandlerNotifId::StateChange},
            {ls::actionIdKey, ls::StateHandlerNotifId::StateChange},
            {ls::senderIdKey, ls::ServiceId::StateHandler},
            {ls::stateIdKey, state}});
}

void notify(const QVariantMap& notification)
{
    Q_EMIT ls::DBusServiceStore::instance()
        ->getService(ls::ServiceId::StateHandler)
        ->notification(notification);
}

} // namespace FakeStateHandler

ls::DBusService::DBusService(const QString& serviceId, QObject* parent) : QObject(parent), m_name(serviceId)
{}

QVariantMap ls::DBusService::process(const QVariantMap& command)
{
    g_requests.append(command);
    return g_reply;
}

void ls::DBusService::onMessage(const QDBusMessage&) {}

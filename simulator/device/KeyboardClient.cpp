// SPDX-License-Identifier: MIT
#include "simulator/device/KeyboardClient.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <vantre/DBusArgumentUnpack.h>

namespace {

QString keyboardService()
{
    return ls::busName(ls::ServiceId::KeyboardHandler);
}

} // namespace

KeyboardClient::KeyboardClient(const QDBusConnection& bus, QObject* parent) : QObject(parent), m_bus(bus) {}

bool KeyboardClient::listen()
{
    return m_bus.connect({}, ls::busPath, keyboardService(), QStringLiteral("notification"), this,
                         SLOT(onNotification(QVariantMap)));
}

void KeyboardClient::send(const QVariantMap& command, int timeout)
{
    QDBusMessage message = QDBusMessage::createMethodCall(keyboardService(), ls::busPath, keyboardService(),
                                                          QStringLiteral("process"));
    message << command;
    // Slots are connected before the message is sent. A QDBusPendingCallWatcher could be too late, and report
    // the reply after messages that were sent later.
    m_bus.callWithCallback(message, this, SLOT(onReply(QDBusMessage)), SLOT(onError(QDBusError)), timeout);
}

void KeyboardClient::onNotification(const QVariantMap& notification)
{
    Q_EMIT announced(libvantre::dbusArgumentUnpack(notification).toMap());
}

void KeyboardClient::onReply(const QDBusMessage& reply)
{
    Q_EMIT answered(libvantre::dbusArgumentUnpack(reply.arguments().value(0)).toMap());
}

void KeyboardClient::onError(const QDBusError& error)
{
    Q_EMIT failed(error);
}

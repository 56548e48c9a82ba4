// SPDX-License-Identifier: MIT
#include <ls/DBusService.h>

#include <ls/BusNames.h>
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDebug>

#include <chrono>
#include <optional>

using namespace std::chrono_literals;

namespace ls {

namespace {

// Long enough for a service that is busy starting, short enough not to delay the start of the caller.
constexpr std::chrono::milliseconds replyTimeout = 5s;

std::optional<QVariantMap> firstMap(const QDBusMessage& message)
{
    const QVariant argument = libvantre::dbusArgumentUnpack(message.arguments().value(0));
    if (argument.userType() != QMetaType::QVariantMap) {
        return std::nullopt;
    }
    return argument.toMap();
}

} // namespace

DBusService::DBusService(const QString& serviceId, QObject* parent)
    : QObject(parent), m_name(busName(serviceId))
{
    QDBusConnection::systemBus().connect(m_name, busPath, m_name, QStringLiteral("notification"), this,
                                         SLOT(onMessage(QDBusMessage)));
}

QVariantMap DBusService::process(const QVariantMap& command)
{
    QDBusMessage call = QDBusMessage::createMethodCall(m_name, busPath, m_name, QStringLiteral("process"));
    call << command;
    call.setAutoStartService(false);
    const QDBusMessage reply =
        QDBusConnection::systemBus().call(call, QDBus::Block, static_cast<int>(replyTimeout.count()));
    if (reply.type() != QDBusMessage::ReplyMessage) {
        qCritical() << "ls::DBusService::process ERROR:" << m_name << "gave no answer:" << reply.errorName()
                    << reply.errorMessage();
        return {};
    }
    const std::optional<QVariantMap> response = firstMap(reply);
    if (!response) {
        qCritical() << "ls::DBusService::process ERROR:" << m_name << "answered without a map.";
    }
    return response.value_or(QVariantMap());
}

void DBusService::onMessage(const QDBusMessage& message)
{
    const std::optional<QVariantMap> content = firstMap(message);
    if (content) {
        Q_EMIT notification(*content);
    } else {
        qCritical() << "ls::DBusService::onMessage ERROR:" << m_name << "announced something without a map.";
    }
}

} // namespace ls

// SPDX-License-Identifier: MIT
#include "tests/whole/system/BusClient.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QDBusArgument>
#include <QDBusMetaType>

#include <limits>

namespace {

constexpr int noTimeout = std::numeric_limits<int>::max();

QString mapText(const QVariantMap& map)
{
    QStringList entries;
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        entries << entry.key() + QStringLiteral(": ") + wireText(entry.value());
    }
    return '{' + entries.join(QStringLiteral(", ")) + '}';
}

QString listText(const QVariantList& list)
{
    QStringList elements;
    for (const QVariant& element : list) {
        elements << wireText(element);
    }
    return '[' + elements.join(QStringLiteral(", ")) + ']';
}

} // namespace

QDBusMessage BusClient::processCall(const QVariantList& arguments)
{
    const QString name = ls::busName(ls::ServiceId::KeyboardHandler);
    QDBusMessage message = QDBusMessage::createMethodCall(name, ls::busPath, name, QStringLiteral("process"));
    message.setArguments(arguments);
    return message;
}

QDBusMessage BusClient::call(const QDBusMessage& message)
{
    return connection().call(message, QDBus::Block, noTimeout);
}

QString BusClient::outcome(const QVariantMap& command)
{
    const QDBusMessage reply = process(command);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return reply.errorName();
    }
    const auto response = qdbus_cast<QVariantMap>(reply.arguments().value(0));
    const bool failed = response.value(ls::resultIdKey) == ls::ResultId::Failure;
    return failed ? response.value(ls::errorIdKey).toString() : QStringLiteral("OK");
}

QList<QDBusPendingCall> BusClient::open(const QVariantMap& command, int count)
{
    QList<QDBusPendingCall> calls;
    for (int i = 0; i < count; ++i) {
        calls << connection().asyncCall(processCall({command}), noTimeout);
    }
    return calls;
}

int repliesTo(const QList<QDBusPendingCall>& calls)
{
    int replies = 0;
    for (QDBusPendingCall call : calls) {
        call.waitForFinished();
        replies += call.isError() ? 0 : 1;
    }
    return replies;
}

QString wireText(const QVariant& value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>()) {
        return QString::fromLatin1(QDBusMetaType::typeToSignature(value.userType())) + ' ' + value.toString();
    }
    const auto argument = value.value<QDBusArgument>();
    const QString signature = argument.currentSignature();
    if (signature == QLatin1String("a{sv}")) {
        return mapText(qdbus_cast<QVariantMap>(argument));
    }
    return signature == QLatin1String("av") ? listText(qdbus_cast<QVariantList>(argument)) : signature;
}

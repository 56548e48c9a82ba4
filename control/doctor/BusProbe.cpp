// SPDX-License-Identifier: MIT
#include "control/doctor/BusSocket.h"
#include "control/doctor/Probes.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>

namespace control {

namespace {

/// Longer than the 5 s that the daemon itself waits for the state handler when it starts.
constexpr int answerTimeoutMs = 6000;

QDBusMessage callOf(const QString& service, const QString& interface, const QString& method)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, ls::busPath, interface, method);
    call.setAutoStartService(false);
    return call;
}

BusFacts::Answer answerIn(const QDBusMessage& reply)
{
    if (reply.type() == QDBusMessage::ReplyMessage) {
        return BusFacts::Answer::Answered;
    }
    return QDBusError(reply).type() == QDBusError::AccessDenied ? BusFacts::Answer::Refused
                                                                : BusFacts::Answer::Missing;
}

/// Calls to the object itself are handled on the main thread of the daemon, unlike those to other paths and
/// pings.
BusFacts::Answer answerOf(const QDBusConnection& bus, const QString& daemon)
{
    return answerIn(bus.call(
        callOf(daemon, QStringLiteral("org.freedesktop.DBus.Introspectable"), QStringLiteral("Introspect")),
        QDBus::Block, answerTimeoutMs));
}

void askForState(BusFacts& facts, const QDBusConnection& bus, const QString& stateHandler)
{
    QDBusMessage question = callOf(stateHandler, stateHandler, QStringLiteral("process"));
    question << QVariantMap{{ls::commandIdKey, ls::StateHandlerCmdId::GetState},
                            {ls::senderIdKey, ls::ServiceId::ServiceTool}};
    const QDBusMessage reply = bus.call(question, QDBus::Block, answerTimeoutMs);
    facts.stateAnswer = answerIn(reply);
    const QVariantMap answer = libvantre::dbusArgumentUnpack(reply.arguments().value(0)).toMap();
    const QString state = answer.value(ls::stateIdKey).toString();
    facts.state = ls::StateId::meta.contains(state) ? state : QString();
}

} // namespace

BusFacts Probes::bus(const QString& prefix)
{
    BusFacts facts;
    facts.prefix = prefix;
    facts.fault = BusSocket::fault();
    if (!facts.fault.isEmpty()) {
        return facts;
    }
    const QDBusConnection connection = QDBusConnection::systemBus();
    if (!connection.isConnected()) {
        facts.fault = connection.lastError().message();
        return facts;
    }
    QDBusConnectionInterface* driver = connection.interface();
    const QDBusReply<QStringList> names = driver->registeredServiceNames();
    if (!names.isValid()) {
        facts.fault = names.error().message();
        return facts;
    }
    facts.names = names.value();
    const QString daemon = facts.nameOf(ls::ServiceId::KeyboardHandler);
    if (facts.names.contains(daemon)) {
        facts.owner = driver->servicePid(daemon).value();
        facts.answer = answerOf(connection, daemon);
    }
    if (facts.has(ls::ServiceId::StateHandler)) {
        askForState(facts, connection, facts.nameOf(ls::ServiceId::StateHandler));
    }
    return facts;
}

} // namespace control

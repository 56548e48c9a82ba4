// SPDX-License-Identifier: MIT
#include "control/Bus.h"

#include "control/Notifications.h"
#include "control/RunningDaemon.h"
#include "control/doctor/BusSocket.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusPendingCallWatcher>
#include <QEventLoop>

namespace control {

namespace {

/// The bus policy lets its members send commands.
const QString group = QStringLiteral(KEYBOARD_HANDLER_SERVICE_GROUP);
const QString statusCommand = QStringLiteral("systemctl status keyboard-handler");

BusFault noRights()
{
    return {NoRights,
            QStringLiteral("The bus does not let you send commands. Run this as root, or become a member of "
                           "the group %1 (sudo adduser \"$USER\" %1) and log in again.")
                .arg(group)};
}

} // namespace

Bus::Bus(const QString& prefix, std::chrono::milliseconds timeout)
    : m_fault(BusSocket::fault())
    , m_bus(m_fault.isEmpty() ? QDBusConnection::systemBus() : QDBusConnection(QString()))
    , m_prefix(prefix)
    , m_timeout(timeout)
{}

QVariantMap Bus::send(const QVariantMap& command, BusFault& fault)
{
    fault = connectionFault();
    if (fault.isFault()) {
        return {};
    }
    const QString name = nameOf(ls::ServiceId::KeyboardHandler);
    QDBusMessage message = QDBusMessage::createMethodCall(name, ls::busPath, name, QStringLiteral("process"));
    message.setAutoStartService(false);
    message << command;
    const QDBusMessage reply = ask(message, m_timeout);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        fault = faultOf(QDBusError(reply));
        return {};
    }
    return libvantre::dbusArgumentUnpack(reply.arguments().value(0)).toMap();
}

void Bus::askForState(QObject* context,
                      const std::function<void(const QString& state, const QString& fault)>& take)
{
    const QString name = nameOf(ls::ServiceId::StateHandler);
    QDBusMessage question =
        QDBusMessage::createMethodCall(name, ls::busPath, name, QStringLiteral("process"));
    question.setAutoStartService(false);
    question << QVariantMap{{ls::commandIdKey, ls::StateHandlerCmdId::GetState},
                            {ls::senderIdKey, ls::ServiceId::ServiceTool}};
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(question), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, take] {
        watcher->deleteLater();
        if (watcher->isError()) {
            const bool isRefused = watcher->error().type() == QDBusError::AccessDenied;
            take({}, isRefused ? QStringLiteral("the bus does not let you ask the state handler; root may")
                               : QStringLiteral("the state handler gives no answer"));
            return;
        }
        const QVariantMap response = Notifications::mapOf(watcher->reply());
        const QString state = response.value(ls::stateIdKey).toString();
        take(state,
             state.isEmpty() ? QStringLiteral("the state handler answers without a state") : QString());
    });
}

BusFault Bus::connectionFault() const
{
    if (m_bus.isConnected()) {
        const QDBusMessage reply = askBus(QStringLiteral("GetId"), {});
        return reply.type() == QDBusMessage::ReplyMessage ? BusFault() : lostBus();
    }
    return {NoBus, QStringLiteral("There is no connection to the system bus (%1). See systemctl status dbus, "
                                  "and DBUS_SYSTEM_BUS_ADDRESS if it is set.")
                       .arg(m_fault.isEmpty() ? m_bus.lastError().message() : m_fault)};
}

BusFault Bus::absence() const
{
    const QString text =
        QStringLiteral("No daemon owns the bus name %1. ").arg(nameOf(ls::ServiceId::KeyboardHandler));
    const QStringList prefixes = otherPrefixes();
    if (!prefixes.isEmpty()) {
        return {NoDaemon, text + QStringLiteral("There are daemons with other prefixes: --prefix %1.")
                                     .arg(prefixes.join(QStringLiteral(" or --prefix ")))};
    }
    if (!RunningDaemon::isThere()) {
        return {NoDaemon, text + QStringLiteral("It does not run; see %1.").arg(statusCommand)};
    }
    const QStringList missing = RunningDaemon::awaitedServices();
    return {NotReady,
            text + (missing.isEmpty()
                        ? QStringLiteral("It runs and has not joined this bus; see %1.").arg(statusCommand)
                        : QStringLiteral("It runs and waits for these services: %1.")
                              .arg(missing.join(QStringLiteral(", "))))};
}

QString Bus::nameOf(const QString& serviceId) const
{
    return m_prefix + QLatin1Char('.') + serviceId;
}

BusFault Bus::faultOf(const QDBusError& error) const
{
    if (error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
        return absence();
    }
    switch (error.type()) {
    case QDBusError::AccessDenied:
        return noRights();
    case QDBusError::ServiceUnknown:
        return absence();
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
        return silence();
    default:
        return {NoAnswer, QStringLiteral("%1: %2").arg(error.name(), error.message())};
    }
}

/// The bus reports the same error when nothing answers in time, and when the daemon or the bus ends
/// meanwhile.
BusFault Bus::silence() const
{
    const QString name = nameOf(ls::ServiceId::KeyboardHandler);
    const std::optional<bool> hasOwner = isOwned(name);
    if (!hasOwner) {
        return lostBus();
    }
    if (!*hasOwner) {
        return {NoDaemon, QStringLiteral("The daemon ended before it answered; see %1.").arg(statusCommand)};
    }
    return {NoAnswer, QStringLiteral("The daemon owns %1 and did not answer in %2 s: it hangs, or its start "
                                     "is not complete. See %3.")
                          .arg(name)
                          .arg(std::chrono::duration_cast<std::chrono::seconds>(m_timeout).count())
                          .arg(statusCommand)};
}

BusFault Bus::lostBus() const
{
    return {NoBus,
            m_bus.isConnected()
                ? QStringLiteral("The system bus does not answer: it hangs. See systemctl status dbus.")
                : QStringLiteral("The system bus ended before the daemon answered.")};
}

std::optional<bool> Bus::isOwned(const QString& name) const
{
    const QDBusMessage reply = askBus(QStringLiteral("NameHasOwner"), {name});
    if (reply.type() != QDBusMessage::ReplyMessage) {
        return std::nullopt;
    }
    return reply.arguments().value(0).toBool();
}

QDBusMessage Bus::askBus(const QString& method, const QVariantList& arguments) const
{
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    QDBusMessage message =
        QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method);
    message.setArguments(arguments);
    return ask(message, BusSocket::timeout);
}

/// A call that blocks would never return if the bus ended meanwhile.
QDBusMessage Bus::ask(const QDBusMessage& message, std::chrono::milliseconds timeout) const
{
    QEventLoop loop;
    QDBusConnection bus = m_bus;
    bus.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus.Local"),
                QStringLiteral("Disconnected"), &loop, SLOT(quit()));
    const QDBusPendingCallWatcher watcher(bus.asyncCall(message, static_cast<int>(timeout.count())));
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    if (bus.isConnected() && !watcher.isFinished()) {
        loop.exec();
    }
    return watcher.isFinished() ? watcher.reply()
                                : QDBusMessage::createError(QDBusError::Disconnected, QString());
}

QStringList Bus::otherPrefixes() const
{
    const QString ending = QLatin1Char('.') + ls::ServiceId::KeyboardHandler;
    const QStringList names = askBus(QStringLiteral("ListNames"), {}).arguments().value(0).toStringList();
    QStringList prefixes;
    for (const QString& name : names) {
        if (name.endsWith(ending)) {
            prefixes.append(name.chopped(ending.size()));
        }
    }
    return prefixes;
}

} // namespace control

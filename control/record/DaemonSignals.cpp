// SPDX-License-Identifier: MIT
#include "control/record/DaemonSignals.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>

namespace control {

namespace {

QVariantMap bodyOf(const QDBusMessage& message)
{
    return libvantre::dbusArgumentUnpack(message.arguments().value(0)).toMap();
}

} // namespace

DaemonSignals::DaemonSignals(const Bus& bus, QObject* parent) : QObject(parent), m_bus(bus) {}

BusFault DaemonSignals::begin()
{
    const BusFault fault = m_bus.connectionFault();
    if (fault.isFault()) {
        return fault;
    }
    const QString daemon = m_bus.nameOf(ls::ServiceId::KeyboardHandler);
    const QString stateHandler = m_bus.nameOf(ls::ServiceId::StateHandler);
    const QString signal = QStringLiteral("notification");
    QDBusConnection& bus = m_bus.connection();
    const bool listens =
        bus.connect(daemon, ls::busPath, daemon, signal, this, SLOT(onAnnouncement(QDBusMessage))) &&
        bus.connect(stateHandler, ls::busPath, stateHandler, signal, this,
                    SLOT(onStateMessage(QDBusMessage))) &&
        bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                    QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                    SLOT(onDisconnected()));
    if (!listens) {
        return {NoBus,
                QStringLiteral("The bus does not deliver signals (%1).").arg(bus.lastError().message())};
    }
    auto* watcher = new QDBusServiceWatcher(daemon, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                Q_EMIT daemonChanged(!owner.isEmpty());
            });
    askForState();
    return {};
}

void DaemonSignals::askForState()
{
    m_bus.askForState(this, [this](const QVariantMap& response) {
        // A change that was announced meanwhile is newer than the answer.
        if (!response.isEmpty() && !m_isStateKnown) {
            report(response.value(ls::stateIdKey));
        }
    });
}

void DaemonSignals::onAnnouncement(const QDBusMessage& message)
{
    Q_EMIT announced(bodyOf(message));
}

/// The daemon ignores messages that lack one of the members.
void DaemonSignals::onStateMessage(const QDBusMessage& message)
{
    const QVariantMap notification = bodyOf(message);
    if (notification.value(ls::notificationIdKey) == ls::StateHandlerNotifId::StateChange &&
        notification.contains(ls::actionIdKey) && notification.contains(ls::senderIdKey)) {
        report(notification.value(ls::stateIdKey));
    }
}

void DaemonSignals::report(const QVariant& state)
{
    if (ls::StateId::meta.contains(state.toString())) {
        m_isStateKnown = true;
        Q_EMIT stateSeen(state.toString());
    }
}

} // namespace control

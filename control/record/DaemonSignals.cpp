// SPDX-License-Identifier: MIT
#include "control/record/DaemonSignals.h"

#include "control/Notifications.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QDBusConnectionInterface>
#include <QDBusServiceWatcher>

namespace control {

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
    const bool listens = bus.connect(daemon, ls::busPath, Notifications::anyInterface, signal, this,
                                     SLOT(onAnnouncement(QDBusMessage))) &&
                         bus.connect(stateHandler, ls::busPath, stateHandler, signal, this,
                                     SLOT(onStateMessage(QDBusMessage))) &&
                         bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                     QStringLiteral("org.freedesktop.DBus.Local"),
                                     QStringLiteral("Disconnected"), this, SLOT(onDisconnected()));
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
    m_bus.askForState(this, [this](const QString& state, const QString& /*fault*/) {
        // A change that was announced meanwhile is newer than the answer.
        if (ls::StateId::meta.contains(state) && !m_isStateKnown) {
            report(state);
        }
    });
}

void DaemonSignals::onAnnouncement(const QDBusMessage& message)
{
    Q_EMIT announced(Notifications::mapOf(message));
}

void DaemonSignals::onStateMessage(const QDBusMessage& message)
{
    const auto state = Notifications::stateOf(Notifications::mapOf(message));
    if (state) {
        report(*state);
    }
}

void DaemonSignals::report(const QString& state)
{
    m_isStateKnown = true;
    Q_EMIT stateSeen(state);
}

} // namespace control

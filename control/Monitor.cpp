// SPDX-License-Identifier: MIT
#include "control/Monitor.h"

#include "control/Notifications.h"
#include "control/Output.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

namespace control {

namespace {

const QString announcement = QStringLiteral("announcement");
const QString state = QStringLiteral("state");
const QString service = QStringLiteral("service");

/// A text that is missing or of another type is shown, too.
QString textOf(const QVariantMap& map, const QString& key)
{
    const QString text = map.value(key).toString();
    return text.isEmpty() ? QStringLiteral("\"\"") : text;
}

QString wordsOf(const QVariantMap& notification)
{
    QString keys = textOf(notification, ls::firstKeyKey);
    if (notification.contains(ls::secondKeyKey)) {
        keys += QStringLiteral(" and ") + textOf(notification, ls::secondKeyKey);
    }
    return QStringLiteral("announces %1 to %2, with %3; sender %4")
        .arg(textOf(notification, ls::actionIdKey), textOf(notification, ls::receiverIdKey), keys,
             textOf(notification, ls::senderIdKey));
}

MonitorEvent serviceEvent(const QString& name, bool isRunning, const QString& words)
{
    return {QDateTime::currentDateTime(),
            service,
            words,
            {{QStringLiteral("name"), name}, {QStringLiteral("isRunning"), isRunning}}};
}

} // namespace

QByteArray MonitorLines::of(const MonitorEvent& event) const
{
    if (!m_hasJson) {
        const QString time = event.at.toString(QStringLiteral("HH:mm:ss.zzz"));
        return encodedLine(time + QStringLiteral("  ") + event.words, m_charset);
    }
    QJsonObject object = event.members;
    object.insert(QStringLiteral("time"), event.at.toUTC().toString(Qt::ISODateWithMs));
    object.insert(QStringLiteral("kind"), event.kind);
    return encodedObject(object, m_charset);
}

QByteArray MonitorLines::loss(int count) const
{
    return of({QDateTime::currentDateTime(),
               QStringLiteral("loss"),
               QStringLiteral("%1 lines are missing: they were not read in time, or too long").arg(count),
               {{QStringLiteral("count"), count}}});
}

Monitor::Monitor(const Bus& bus, const QStringList& receivers, Report report)
    : m_bus(bus)
    , m_stateHandler(m_bus.nameOf(ls::ServiceId::StateHandler))
    , m_receivers(receivers)
    , m_report(std::move(report))
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& name, const QString& /*oldOwner*/, const QString& newOwner) {
                onOwnerChanged(name, newOwner);
            });
}

BusFault Monitor::begin()
{
    const BusFault noBus = m_bus.connectionFault();
    if (noBus.isFault()) {
        return noBus;
    }
    const QString daemon = m_bus.nameOf(ls::ServiceId::KeyboardHandler);
    const QString notification = QStringLiteral("notification");
    QDBusConnection& bus = m_bus.connection();
    m_watcher.setConnection(bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcher.setWatchedServices({daemon, m_stateHandler});
    bus.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus.Local"),
                QStringLiteral("Disconnected"), this, SLOT(onBusLost()));
    bus.connect(daemon, ls::busPath, Notifications::anyInterface, notification, this,
                SLOT(onAnnouncement(QDBusMessage)));
    bus.connect(m_stateHandler, ls::busPath, m_stateHandler, notification, this,
                SLOT(onStateMessage(QDBusMessage)));
    // The bus answers after it has added the rules above.
    const std::optional<bool> isRunning = m_bus.isOwned(daemon);
    if (!isRunning) {
        return {NoBus, QStringLiteral("The system bus does not answer.")};
    }
    m_report(serviceEvent(daemon, *isRunning,
                          *isRunning ? daemon + QStringLiteral(" is on the bus") : m_bus.absence().text));
    askForState();
    return {};
}

void Monitor::onAnnouncement(const QDBusMessage& message)
{
    const QVariantMap notification = Notifications::mapOf(message);
    if (m_receivers.isEmpty() || m_receivers.contains(notification.value(ls::receiverIdKey).toString())) {
        m_report({QDateTime::currentDateTime(),
                  announcement,
                  wordsOf(notification),
                  {{QStringLiteral("notification"), QJsonObject::fromVariantMap(notification)}}});
    }
    Q_EMIT announced(notification);
}

void Monitor::onStateMessage(const QDBusMessage& message)
{
    const QVariantMap notification = Notifications::mapOf(message);
    const auto current = Notifications::stateOf(notification);
    if (current) {
        ++m_stateChanges;
        reportState(*current, {});
    } else if (Notifications::isStateChange(notification)) {
        m_report(
            {QDateTime::currentDateTime(),
             state,
             QStringLiteral("the state handler announces the state %1, which the daemon ignores, because "
                            "the state is unknown or the message not complete")
                 .arg(textOf(notification, ls::stateIdKey)),
             {{QStringLiteral("ignored"), QJsonObject::fromVariantMap(notification)}}});
    }
}

void Monitor::onBusLost()
{
    m_report({QDateTime::currentDateTime(), QStringLiteral("bus"), QStringLiteral("the system bus ended"),
              QJsonObject()});
    Q_EMIT busLost();
}

void Monitor::onOwnerChanged(const QString& name, const QString& owner)
{
    m_report(serviceEvent(
        name, !owner.isEmpty(),
        name + (owner.isEmpty() ? QStringLiteral(" leaves the bus") : QStringLiteral(" comes to the bus"))));
    if (owner.isEmpty()) {
        return;
    }
    if (name == m_stateHandler) {
        askForState();
    } else {
        Q_EMIT daemonCame();
    }
}

/// A state handler that does not answer must not hold up the announcements.
void Monitor::askForState()
{
    const int changes = m_stateChanges;
    m_bus.askForState(this, [this, changes](const QString& current, const QString& fault) {
        if (changes == m_stateChanges) { // a change that came meanwhile is newer than the answer
            reportState(current, fault);
        }
    });
}

void Monitor::reportState(const QString& current, const QString& fault)
{
    m_report({QDateTime::currentDateTime(),
              state,
              current.isEmpty() ? QStringLiteral("the state is not known: ") + fault
                                : QStringLiteral("the state is ") + current,
              {{ls::stateIdKey, current.isEmpty() ? QJsonValue() : QJsonValue(current)}}});
    Q_EMIT stateSeen(current);
}

} // namespace control

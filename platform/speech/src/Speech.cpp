// SPDX-License-Identifier: MIT
#include <speech/Speech.h>

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>

namespace libspeech::detail {

namespace {

QString speechDaemon()
{
    return QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".SpeechDaemon");
}

QDBusMessage ownerQuery()
{
    QDBusMessage query = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    query << speechDaemon();
    return query;
}

} // namespace

Speech::Speech(QObject* parent) : QObject(parent)
{
    watchOwner();
    queryOwner();
}

void Speech::speakFromId(const QVariantMap& request)
{
    send(QStringLiteral("speakFromId"), {request});
}

void Speech::cancelAll()
{
    send(QStringLiteral("cancelAll"), {});
}

void Speech::watchOwner()
{
    auto* watcher = new QDBusServiceWatcher(speechDaemon(), QDBusConnection::systemBus(),
                                            QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& newOwner) {
                m_ownerChangeSeen = true;
                setOwner(newOwner);
            });
}

// The reply and the first change of owner may arrive in either order. A change is never older than the reply,
// so the reply is ignored after a change.
void Speech::queryOwner()
{
    auto* query = new QDBusPendingCallWatcher(QDBusConnection::systemBus().asyncCall(ownerQuery()), this);
    connect(query, &QDBusPendingCallWatcher::finished, this, [this, query] {
        query->deleteLater();
        const QDBusPendingReply<QString> owner = *query;
        if (!m_ownerChangeSeen && owner.isValid()) {
            setOwner(owner.value());
        }
    });
}

void Speech::setOwner(const QString& owner)
{
    if (owner == m_owner) {
        return;
    }
    const bool wasConnected = !m_owner.isEmpty();
    m_owner = owner;
    if (wasConnected) {
        Q_EMIT disconnected();
    }
    if (!owner.isEmpty()) {
        Q_EMIT connected();
    }
}

void Speech::send(const QString& member, const QVariantList& arguments)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(speechDaemon(), QStringLiteral("/"), speechDaemon(), member);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    QDBusConnection::systemBus().send(message);
}

} // namespace libspeech::detail

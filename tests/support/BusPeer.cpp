// SPDX-License-Identifier: MIT
#include "tests/support/BusPeer.h"

#include "tests/support/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDBusVirtualObject>
#include <QMutex>
#include <QMutexLocker>

/// The object at "/", which accepts calls of any interface and signature.
class BusPeer::Object : public QDBusVirtualObject
{
public:
    Object(const BusPeer& peer, const Behaviour& behaviour) : m_peer(peer), m_behaviour(behaviour) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection&) override
    {
        remember(call);
        m_behaviour(m_peer, call);
        return true;
    }

    QList<QDBusMessage> calls() const
    {
        const QMutexLocker locker(&m_mutex);
        return m_calls;
    }

private:
    void remember(const QDBusMessage& call)
    {
        const QMutexLocker locker(&m_mutex);
        m_calls.append(call);
    }

    const BusPeer& m_peer;
    const Behaviour m_behaviour;
    mutable QMutex m_mutex;
    QList<QDBusMessage> m_calls;
};

namespace {

QString newConnectionName()
{
    static int count = 0;
    return QStringLiteral("peer %1").arg(++count);
}

} // namespace

void BusPeer::hang(const BusPeer&, const QDBusMessage&) {}

void BusPeer::echo(const BusPeer& self, const QDBusMessage& call)
{
    self.reply(call, call.arguments());
}

BusPeer::BusPeer(PrivateBus& bus, const QString& name, const Behaviour& behaviour)
    : m_name(name), m_connection(newConnectionName()), m_object(new Object(*this, behaviour))
{
    m_object->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_object, &QObject::deleteLater);
    m_thread.start();
    QDBusConnection connection = bus.connect(m_connection);
    connection.registerVirtualObject(QStringLiteral("/"), m_object);
    connection.interface()->registerService(name, QDBusConnectionInterface::ReplaceExistingService,
                                            QDBusConnectionInterface::AllowReplacement);
}

// The connection stays open until the bus ends: when Qt closes one on its bus thread, it sometimes races with
// the destruction of objects on other threads.
BusPeer::~BusPeer()
{
    QDBusConnection connection(m_connection);
    if (connection.isConnected()) {
        connection.unregisterService(m_name);
        connection.unregisterObject(QStringLiteral("/"));
    }
    m_thread.quit();
    m_thread.wait();
}

void BusPeer::reply(const QDBusMessage& call, const QVariantList& arguments) const
{
    QDBusConnection(m_connection).send(call.createReply(arguments));
}

void BusPeer::refuse(const QDBusMessage& call, const QString& errorName, const QString& errorText) const
{
    QDBusConnection(m_connection).send(call.createErrorReply(errorName, errorText));
}

void BusPeer::announce(const QVariantList& arguments) const
{
    QDBusMessage signal =
        QDBusMessage::createSignal(QStringLiteral("/"), m_name, QStringLiteral("notification"));
    signal.setArguments(arguments);
    QDBusConnection(m_connection).send(signal);
}

void BusPeer::call(const QString& service, const QString& method, const QVariantList& arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, QStringLiteral("/"), service, method);
    message.setArguments(arguments);
    QDBusConnection(m_connection).send(message);
}

void BusPeer::synchronise() const
{
    QDBusConnection(m_connection).interface()->isServiceRegistered(m_name);
}

void BusPeer::vanish() const
{
    QDBusConnection::disconnectFromBus(m_connection);
}

QList<QDBusMessage> BusPeer::calls() const
{
    return m_object->calls();
}

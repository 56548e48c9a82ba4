// SPDX-License-Identifier: MIT
#include "simulator/device/BusConnection.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QUuid>

BusConnection::BusConnection(const QString& address)
    : m_name(QUuid::createUuid().toString()), m_connection(QDBusConnection::connectToBus(address, m_name))
{
    // The bus sends a connection its name right after it lets the connection in. Qt adds that name, without a
    // lock, to a list that every call reads on the caller's thread, except calls to the bus itself. The reply
    // to such a call comes after the name.
    m_connection.interface()->isServiceRegistered(m_connection.baseService());
}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

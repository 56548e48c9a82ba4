// SPDX-License-Identifier: MIT
#include "simulator/device/BusConnection.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QUuid>

BusConnection::BusConnection(const QString& address)
    : m_name(QUuid::createUuid().toString()), m_connection(QDBusConnection::connectToBus(address, m_name))
{
    // Avoids a race in Qt: on the arrival of the connection's own name, Qt's bus thread changes, without a
    // lock, a list that all calls except those to the bus read on the caller's thread. The bus sends this
    // reply after the name.
    m_connection.interface()->isServiceRegistered(m_connection.baseService());
}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

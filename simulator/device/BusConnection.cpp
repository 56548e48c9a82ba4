// SPDX-License-Identifier: MIT
#include "simulator/device/BusConnection.h"

#include <QUuid>

BusConnection::BusConnection(const QString& address)
    : m_name(QUuid::createUuid().toString()), m_connection(QDBusConnection::connectToBus(address, m_name))
{}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

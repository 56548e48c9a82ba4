// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>

/// A separate connection to a message bus, closed with this object.
class BusConnection
{
public:
    /// Opens the connection; check `get().isConnected()`.
    explicit BusConnection(const QString& address);
    ~BusConnection();

    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    QDBusConnection& get() { return m_connection; }

private:
    QString m_name;
    QDBusConnection m_connection;
};

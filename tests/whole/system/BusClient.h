// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

/// A client of the keyboard service with a separate bus connection, for valid and invalid calls. Calls wait
/// for the reply without running the event loop.
class BusClient
{
public:
    explicit BusClient(const QString& busAddress) : m_connection(busAddress) {}

    /// Creates a call of `process` with these arguments, without sending it.
    static QDBusMessage processCall(const QVariantList& arguments);

    /// The reply or the error.
    QDBusMessage call(const QDBusMessage& message);
    QDBusMessage process(const QVariantMap& command) { return call(processCall({command})); }
    /// "OK", the `errorId` of a failure, or the name of a bus error.
    QString outcome(const QVariantMap& command);
    /// Sends the command several times without waiting for the replies.
    QList<QDBusPendingCall> open(const QVariantMap& command, int count);

    QDBusConnection& connection() { return m_connection.get(); }

private:
    BusConnection m_connection;
};

/// Waits for the replies; returns the number without errors.
int repliesTo(const QList<QDBusPendingCall>& calls);

/// A value received from the bus, with the type of each part: `{errorId: s Undefined, key: i 139}`.
QString wireText(const QVariant& value);

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/BusConnection.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QVariantMap>

/// A client of the keyboard service with a bus connection of its own, which need not keep to what is asked
/// of it. Its calls wait for the reply without running the event loop.
class BusClient
{
public:
    explicit BusClient(const QString& busAddress) : m_connection(busAddress) {}

    /// A call of `process` with these arguments, not sent yet.
    static QDBusMessage processCall(const QVariantList& arguments);

    /// The reply, or the error that came instead of it.
    QDBusMessage call(const QDBusMessage& message);
    QDBusMessage process(const QVariantMap& command) { return call(processCall({command})); }
    /// "OK", or the `errorId` of the failure, or the name of the bus error.
    QString outcome(const QVariantMap& command);
    /// Sends the command this many times without waiting for the replies.
    QList<QDBusPendingCall> open(const QVariantMap& command, int count);

    QDBusConnection& connection() { return m_connection.get(); }

private:
    BusConnection m_connection;
};

/// Waits for the replies; how many are no errors.
int repliesTo(const QList<QDBusPendingCall>& calls);

/// A value as it came over the bus, with the type of each part: `{errorId: s Undefined, key: i 139}`.
QString wireText(const QVariant& value);

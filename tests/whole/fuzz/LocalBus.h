// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/PrivateBus.h"

#include <QDBusMessage>
#include <QObject>

#include <optional>

/// A bus for messages from this process to itself. Qt marshals and unmarshals such a message without sending
/// it, so receivers get the same message as from another process, fast enough for a fuzzer.
class LocalBus : public QObject
{
    Q_OBJECT

public:
    /// Needs the application object.
    LocalBus();

    /// Sends these arguments and returns the received message, or nothing if no message can hold them.
    std::optional<QDBusMessage> carry(const QVariantList& arguments);
    /// Calls `interface` of this process's object at `/`.
    static QDBusMessage call(const QString& interface, const QString& method, const QVariantList& arguments);

public Q_SLOTS:
    void receive(const QDBusMessage& message) { m_received = message; }

private:
    static QDBusMessage send(const QString& path, const QString& interface, const QString& method,
                             const QVariantList& arguments);

    PrivateBus m_bus;
    std::optional<QDBusMessage> m_received;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/PrivateBus.h"

#include <QDBusMessage>
#include <QObject>

#include <optional>

/// A bus for messages from this process to itself. Qt marshals such a message and reads it again at once,
/// without sending it anywhere, so that their receivers get what they would get from another process: as fast
/// as a fuzzer needs it.
class LocalBus : public QObject
{
    Q_OBJECT

public:
    /// Needs the application object.
    LocalBus();

    /// A message as it is received that was sent with these arguments. Nothing when no message can hold them.
    std::optional<QDBusMessage> carry(const QVariantList& arguments);
    /// The answer to a call of `interface` of this process's own object at `/`.
    static QDBusMessage call(const QString& interface, const QString& method, const QVariantList& arguments);

public Q_SLOTS:
    void take(const QDBusMessage& message) { m_taken = message; }

private:
    static QDBusMessage send(const QString& path, const QString& interface, const QString& method,
                             const QVariantList& arguments);

    PrivateBus m_bus;
    std::optional<QDBusMessage> m_taken;
};

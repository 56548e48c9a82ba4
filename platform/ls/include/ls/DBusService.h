// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVariantMap>

class QDBusMessage;

namespace ls {

/// Proxy of another service on the system bus. Created and owned by `DBusServiceStore`.
class DBusService : public QObject
{
    Q_OBJECT

public:
    /// `serviceId` is an identifier of `ls::ServiceId`. Subscribes to the notifications of the service,
    /// whether or not it is on the bus now.
    explicit DBusService(const QString& serviceId, QObject* parent = nullptr);

    /// Sends a command map and waits at most five seconds for the reply. Unpacks nested bus arguments of the
    /// reply. Returns an empty map, after one critical log line, if the bus or the service is absent, if the
    /// service does not answer in time, or if the answer is not a map.
    QVariantMap process(const QVariantMap& command);

Q_SIGNALS:
    /// A notification of the service, nested bus arguments unpacked. A notification whose first argument is
    /// not a map is dropped with one critical log line.
    void notification(const QVariantMap& notification);

private Q_SLOTS:
    void onMessage(const QDBusMessage& message);

private:
    QString m_name;
};

} // namespace ls

// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

/// The peers of the keyboard service: the receivers of its key actions and a client that sends commands.
class KeyboardClient : public QObject
{
    Q_OBJECT

public:
    explicit KeyboardClient(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Subscribes to notifications of the keyboard service from any sender, even without the service's name.
    bool listen();

    /// Sends a command without waiting; `answered` or `failed` reports the result.
    void send(const QVariantMap& command);

Q_SIGNALS:
    void announced(const QVariantMap& notification);
    /// The response, with nested values unpacked.
    void answered(const QVariantMap& response);
    void failed(const QDBusError& error);

private Q_SLOTS:
    void onNotification(const QVariantMap& notification);
    void onReply(const QDBusMessage& reply);
    void onError(const QDBusError& error);

private:
    QDBusConnection m_bus;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

/// The other end of the keyboard service: the receivers of its key actions, and a client that sends it
/// commands.
class KeyboardClient : public QObject
{
    Q_OBJECT

public:
    explicit KeyboardClient(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Listens to the notifications of whoever speaks as the keyboard service, with or without its name.
    bool listen();

    /// Sends a command without waiting; `answered` or `failed` tells what came of it.
    void send(const QVariantMap& command);

Q_SIGNALS:
    void announced(const QVariantMap& notification);
    /// The response, nested values unpacked.
    void answered(const QVariantMap& response);
    void failed(const QDBusError& error);

private Q_SLOTS:
    void onNotification(const QVariantMap& notification);
    void onReply(const QDBusMessage& reply);
    void onError(const QDBusError& error);

private:
    QDBusConnection m_bus;
};

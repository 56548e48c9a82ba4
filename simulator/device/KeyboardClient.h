// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QVariantMap>

#include <limits>

/// The peers of the keyboard service: the receivers of its key actions and a client that sends commands.
class KeyboardClient : public QObject
{
    Q_OBJECT

public:
    explicit KeyboardClient(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Subscribes to notifications of the keyboard service from any sender, even without the service's name.
    bool listen();

    static constexpr int defaultTimeout = -1; // the library's, 25 seconds
    static constexpr int noTimeout = std::numeric_limits<int>::max();

    /// Sends a command without waiting; `answered` or `failed` reports the result. The timeout is in
    /// milliseconds.
    void send(const QVariantMap& command, int timeout);

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

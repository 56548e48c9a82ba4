// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// A bus connection without a library: reads only on request and can be closed without reading.
class RawBusClient
{
public:
    explicit RawBusClient(const QString& socketPath);
    ~RawBusClient() { leave(); }

    RawBusClient(const RawBusClient&) = delete;
    RawBusClient& operator=(const RawBusClient&) = delete;

    /// Authenticates with the bus; false on failure.
    bool enter();
    /// Sends a call of `process` with this command; false if the bus accepts no data for a second.
    bool call(const QMap<QByteArray, QByteArray>& command);
    /// Subscribes to the signals that match `rule`, or requests a name; false if the bus does not answer.
    bool listen(const QByteArray& rule);
    bool own(const QByteArray& name);
    /// Reads at most `count` available bytes, without blocking.
    QByteArray read(int count);
    /// Closes the connection, even with unread data.
    void leave();

private:
    bool ask(const QByteArray& member, const QByteArray& signature, const QByteArray& body);
    bool converse(const QByteArray& words, const QByteArray& answer);
    bool send(const QByteArray& bytes);

    int m_socket = -1;
    quint32 m_serial = 0;
};

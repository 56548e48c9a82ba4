// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// A bus connection without a library behind it: it reads nothing unless it is told to, and is gone at once
/// when it is told to leave.
class RawBusClient
{
public:
    explicit RawBusClient(const QString& socketPath);
    ~RawBusClient() { leave(); }

    RawBusClient(const RawBusClient&) = delete;
    RawBusClient& operator=(const RawBusClient&) = delete;

    /// Introduces itself to the bus; false when the bus does not take it.
    bool enter();
    /// Sends a call of `process` with this command; false when the bus takes no more for a second.
    bool call(const QMap<QByteArray, QByteArray>& command);
    /// Asks the bus for the signals that match `rule`, or for a name; false when the bus does not answer.
    bool listen(const QByteArray& rule);
    bool own(const QByteArray& name);
    /// Takes at most `count` bytes of what the bus has for this client, without waiting; returns them.
    QByteArray read(int count);
    /// Closes the connection, whatever is still unread.
    void leave();

private:
    bool ask(const QByteArray& member, const QByteArray& signature, const QByteArray& body);
    bool converse(const QByteArray& words, const QByteArray& answer);
    bool send(const QByteArray& bytes);

    int m_socket = -1;
    quint32 m_serial = 0;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QMap>
#include <QTcpSocket>

/// The answer to a request; its status is 0 when none came.
struct HttpReply
{
    int status = 0;
    /// By their names in lower case.
    QMap<QByteArray, QByteArray> headers;
    QByteArray body;

    static HttpReply parse(const QByteArray& bytes);

    QJsonObject json() const;
    /// The sentence of an error.
    QString error() const;
};

/// One connection to the server of this process, on which the bytes are sent that a test wants. All waiting
/// runs the event loop, in which the server works.
class HttpClient
{
public:
    explicit HttpClient(quint16 port);

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    /// Adds to what is sent, and sends what the system takes.
    void send(const QByteArray& bytes);
    /// Sends at once, without the event loop.
    void flush();
    /// Tells the server that no more is sent.
    void endSending();
    /// Reads nothing, so that the server cannot send much.
    void stopReading();
    /// Reads so many bytes nonetheless, if they are there.
    void readSome(int size);
    void goOnReading();
    void disconnect() { m_socket.abort(); }

    /// The bytes that have arrived so far.
    const QByteArray& received();
    bool awaitEnd();
    /// Waits for the end of the connection.
    HttpReply reply();

private:
    QTcpSocket m_socket;
    QByteArray m_received;
    bool m_reading = true;
};

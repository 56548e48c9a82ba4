// SPDX-License-Identifier: MIT
#include "tests/workbench/web/HttpClient.h"

#include "tests/support/Waiting.h"

#include <QHostAddress>
#include <QJsonDocument>
#include <QtTest>

#include <sys/socket.h>

namespace {

constexpr int smallBuffer = 1024;

} // namespace

HttpReply HttpReply::parse(const QByteArray& bytes)
{
    HttpReply reply;
    const int end = bytes.indexOf("\r\n\r\n");
    if (end == -1) {
        return reply;
    }
    const QByteArrayList lines = bytes.left(end).replace('\r', QByteArray()).split('\n');
    reply.status = lines.constFirst().split(' ').value(1).toInt();
    for (const QByteArray& line : lines.mid(1)) {
        const int colon = line.indexOf(": ");
        reply.headers.insert(line.left(colon).toLower(), line.mid(colon + 2));
    }
    reply.body = bytes.mid(end + 4);
    return reply;
}

QJsonObject HttpReply::json() const
{
    return QJsonDocument::fromJson(body).object();
}

QString HttpReply::error() const
{
    return json().value(QStringLiteral("error")).toString();
}

HttpClient::HttpClient(quint16 port)
{
    // The server takes earlier clients, so that its queue has room. It takes this one, and starts its time
    // for the request, when the event loop runs again.
    QCoreApplication::processEvents();
    m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    m_socket.waitForConnected(-1);
}

void HttpClient::send(const QByteArray& bytes)
{
    m_socket.write(bytes);
    m_socket.flush();
}

void HttpClient::flush()
{
    while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(-1)) {
        received();
    }
}

void HttpClient::endSending()
{
    // With the event loop: the server does not read what it has not accepted yet.
    WAIT_FOR((received(), m_socket.bytesToWrite() == 0 || !isConnected()));
    shutdown(int(m_socket.socketDescriptor()), SHUT_WR);
}

void HttpClient::stopReading()
{
    m_reading = false;
    m_socket.setReadBufferSize(smallBuffer);
}

void HttpClient::goOnReading()
{
    m_reading = true;
    m_socket.setReadBufferSize(0);
}

void HttpClient::readSome(int size)
{
    m_received += m_socket.read(size);
}

const QByteArray& HttpClient::received()
{
    if (m_reading && m_socket.bytesAvailable() > 0) {
        m_received += m_socket.readAll();
    }
    return m_received;
}

bool HttpClient::awaitEnd()
{
    WAIT_FOR((received(), !isConnected()));
    return true;
}

HttpReply HttpClient::reply()
{
    return awaitEnd() ? HttpReply::parse(received()) : HttpReply();
}

// SPDX-License-Identifier: MIT
#include "tests/whole/system/RawBusClient.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>

#include <algorithm>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr int noTimeout = -1;
constexpr int wordSize = 4;
constexpr int entryAlignment = 8;

enum HeaderField : char { Path = 1, Interface = 2, Member = 3, Destination = 6, Signature = 8 };

/// Bytes of a message in native byte order, with the alignment of the protocol.
class Marshalled
{
public:
    void align(int boundary)
    {
        while (m_bytes.size() % boundary != 0) {
            m_bytes.append('\0');
        }
    }
    void addNumber(quint32 number)
    {
        align(wordSize);
        m_bytes.append(reinterpret_cast<const char*>(&number), wordSize);
    }
    void addText(const QByteArray& text)
    {
        addNumber(quint32(text.size()));
        m_bytes.append(text).append('\0');
    }
    void addSignature(const char* signature)
    {
        m_bytes.append(char(std::strlen(signature))).append(signature).append('\0');
    }
    void addField(HeaderField field, const char* type, const QByteArray& text)
    {
        align(entryAlignment);
        m_bytes.append(char(field));
        addSignature(type);
        if (field == Signature) {
            addSignature(text.constData());
        } else {
            addText(text);
        }
    }
    const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
};

QByteArray bodyOf(const QMap<QByteArray, QByteArray>& map)
{
    Marshalled entries; // preceded by a length and its padding, which preserve the alignment of 8
    for (auto entry = map.cbegin(); entry != map.cend(); ++entry) {
        entries.align(entryAlignment);
        entries.addText(entry.key());
        entries.addSignature("s");
        entries.addText(entry.value());
    }
    Marshalled body;
    body.addNumber(quint32(entries.bytes().size()));
    body.align(entryAlignment);
    return body.bytes() + entries.bytes();
}

QByteArray messageOf(quint32 serial, const QByteArray& service, const QByteArray& path,
                     const QByteArray& member, const QByteArray& signature, const QByteArray& body)
{
    Marshalled fields;
    fields.addField(Path, "o", path);
    fields.addField(Interface, "s", service);
    fields.addField(Member, "s", member);
    fields.addField(Destination, "s", service);
    if (!signature.isEmpty()) {
        fields.addField(Signature, "g", signature);
    }
    const char order = Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? 'l' : 'B';
    const char start[wordSize] = {order, 1, 0, 1}; // a method call without flags, protocol version 1
    Marshalled numbers;
    numbers.addNumber(quint32(body.size()));
    numbers.addNumber(serial);
    numbers.addNumber(quint32(fields.bytes().size()));
    QByteArray message = QByteArray(start, wordSize) + numbers.bytes() + fields.bytes();
    message.append(QByteArray((entryAlignment - message.size() % entryAlignment) % entryAlignment, '\0'));
    return message + body;
}

} // namespace

RawBusClient::RawBusClient(const QString& socketPath)
    : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, qPrintable(socketPath), sizeof address.sun_path);
    if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1) {
        leave();
    }
}

bool RawBusClient::enter()
{
    const QByteArray user = QByteArray::number(::getuid()).toHex();
    return converse(QByteArray(1, '\0') + "AUTH EXTERNAL " + user + "\r\n", "OK ") && send("BEGIN\r\n") &&
           ask("Hello", {}, {});
}

bool RawBusClient::call(const QMap<QByteArray, QByteArray>& command)
{
    const QByteArray service = ls::busName(ls::ServiceId::KeyboardHandler).toUtf8();
    return send(messageOf(++m_serial, service, ls::busPath.toUtf8(), "process", "a{sv}", bodyOf(command)));
}

bool RawBusClient::listen(const QByteArray& rule)
{
    Marshalled body;
    body.addText(rule);
    return ask("AddMatch", "s", body.bytes());
}

bool RawBusClient::own(const QByteArray& name)
{
    Marshalled body;
    body.addText(name);
    body.addNumber(0);
    return ask("RequestName", "su", body.bytes());
}

QByteArray RawBusClient::read(int count)
{
    QByteArray bytes(count, '\0');
    const ssize_t size = ::recv(m_socket, bytes.data(), size_t(count), MSG_DONTWAIT);
    bytes.truncate(int(std::max<ssize_t>(size, 0)));
    return bytes;
}

void RawBusClient::leave()
{
    if (m_socket != -1) {
        ::close(m_socket);
        m_socket = -1;
    }
}

bool RawBusClient::ask(const QByteArray& member, const QByteArray& signature, const QByteArray& body)
{
    const quint32 serial = ++m_serial;
    Marshalled replySerial; // as in the header of the reply
    replySerial.addNumber(serial);
    return converse(
        messageOf(serial, "org.freedesktop.DBus", "/org/freedesktop/DBus", member, signature, body),
        QByteArrayLiteral("\5\1u\0") + replySerial.bytes());
}

bool RawBusClient::converse(const QByteArray& words, const QByteArray& answer)
{
    constexpr int maxSize = 4096;
    pollfd poller{m_socket, POLLIN, 0};
    QByteArray heard;
    bool isThere = send(words);
    while (isThere && !heard.contains(answer)) {
        const QByteArray bytes = ::poll(&poller, 1, noTimeout) == 1 ? read(maxSize) : QByteArray();
        isThere = !bytes.isEmpty();
        heard += bytes;
    }
    return isThere;
}

bool RawBusClient::send(const QByteArray& bytes)
{
    return ::send(m_socket, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL) == bytes.size();
}

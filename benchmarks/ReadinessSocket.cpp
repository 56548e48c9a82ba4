// SPDX-License-Identifier: MIT
#include "benchmarks/ReadinessSocket.h"

#include <QFile>

#include <cstring>
#include <stdexcept>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr size_t maxMessageSize = 4096;

ReadinessSocket::Time timeStampOf(msghdr& message)
{
    for (cmsghdr* control = CMSG_FIRSTHDR(&message); control; control = CMSG_NXTHDR(&message, control)) {
        if (control->cmsg_level == SOL_SOCKET && control->cmsg_type == SCM_TIMESTAMPNS) {
            timespec time{};
            std::memcpy(&time, CMSG_DATA(control), sizeof time);
            return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
        }
    }
    throw std::runtime_error("A message has no time stamp.");
}

} // namespace

ReadinessSocket::ReadinessSocket(const QString& path)
    : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    std::strncpy(address.sun_path, name.constData(), sizeof address.sun_path - 1);
    const int on = 1;
    if (::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1 ||
        ::setsockopt(m_socket, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on) == -1) {
        throw std::runtime_error("The readiness socket cannot be created.");
    }
}

ReadinessSocket::~ReadinessSocket()
{
    ::close(m_socket);
}

std::optional<ReadinessSocket::Time> ReadinessSocket::takeDeclaration()
{
    char text[maxMessageSize];
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(timespec))];
    iovec part{text, sizeof text};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t size = ::recvmsg(m_socket, &message, 0);
    if (size <= 0 || !QByteArray(text, int(size)).split('\n').contains("READY=1")) {
        return std::nullopt;
    }
    return timeStampOf(message);
}

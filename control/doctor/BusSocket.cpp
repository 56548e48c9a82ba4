// SPDX-License-Identifier: MIT
#include "control/doctor/BusSocket.h"

#include <QFile>

#include <cerrno>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace control {

namespace {

constexpr int responseTimeoutMs = 5000;
const QString pathPrefix = QStringLiteral("unix:path=");

QString socketPath()
{
    const QString address = qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS");
    if (address.isEmpty()) {
        return QStringLiteral("/run/dbus/system_bus_socket");
    }
    const bool isFile = address.startsWith(pathPrefix) && !address.contains(QLatin1Char(';'));
    return isFile ? address.mid(pathPrefix.size()).section(QLatin1Char(','), 0, 0) : QString();
}

QString systemError(const QString& path)
{
    return QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(std::strerror(errno)));
}

/// Asks for the ways to authenticate, which every bus answers at once.
QString talkTo(int fd, const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray name = QFile::encodeName(path);
    if (static_cast<size_t>(name.size()) >= sizeof address.sun_path) {
        return {};
    }
    std::memcpy(address.sun_path, name.constData(), static_cast<size_t>(name.size()));
    constexpr char question[] = "\0AUTH\r\n";
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::send(fd, question, sizeof question - 1, MSG_NOSIGNAL) < 0) {
        return systemError(path);
    }
    pollfd answer{fd, POLLIN, 0};
    return ::poll(&answer, 1, responseTimeoutMs) == 1
               ? QString()
               : QStringLiteral("%1 accepts clients, but does not respond: the bus hangs").arg(path);
}

} // namespace

QString BusSocket::fault()
{
    const QString path = socketPath();
    if (path.isEmpty()) {
        return {};
    }
    // A full queue of a bus that hangs would block the connection.
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd == -1) {
        return systemError(path);
    }
    const QString fault = talkTo(fd, path);
    ::close(fd);
    return fault;
}

} // namespace control

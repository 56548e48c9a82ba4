// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <sys/socket.h>
#include <sys/un.h>

/// A socket at `path` at which the kernel alone accepts clients; -1 on failure. The caller closes it.
inline int listenAt(const QString& path)
{
    constexpr int maxClients = 10;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, qPrintable(path), sizeof address.sun_path);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool listens = ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                         ::listen(fd, maxClients) == 0;
    return listens ? fd : -1;
}

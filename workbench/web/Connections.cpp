// SPDX-License-Identifier: MIT
#include "workbench/web/Connections.h"

#include <algorithm>

#include <sys/socket.h>

namespace {

constexpr size_t maximum = 64;

} // namespace

bool Connections::add(int socket)
{
    const std::lock_guard lock(m_mutex);
    if (m_connections.size() >= maximum) {
        const auto oldest = std::find_if(m_connections.begin(), m_connections.end(),
                                         [](const Connection& connection) { return !connection.kept; });
        if (oldest == m_connections.end()) {
            return false;
        }
        // Its thread wakes up, and closes it.
        shutdown(oldest->socket, SHUT_RDWR);
        m_connections.erase(oldest);
    }
    m_connections.push_back({socket, false});
    return true;
}

void Connections::remove(int socket)
{
    const std::lock_guard lock(m_mutex);
    m_connections.remove_if([socket](const Connection& connection) { return connection.socket == socket; });
}

void Connections::keep(int socket)
{
    setKept(socket, true);
}

void Connections::unkeep(int socket)
{
    setKept(socket, false);
}

void Connections::stopReading()
{
    shutDown(SHUT_RD);
}

void Connections::cutOff()
{
    shutDown(SHUT_RDWR);
}

void Connections::setKept(int socket, bool kept)
{
    const std::lock_guard lock(m_mutex);
    for (Connection& connection : m_connections) {
        if (connection.socket == socket) {
            connection.kept = kept;
        }
    }
}

void Connections::shutDown(int how)
{
    const std::lock_guard lock(m_mutex);
    for (const Connection& connection : m_connections) {
        shutdown(connection.socket, how);
    }
}

// SPDX-License-Identifier: MIT
#pragma once

#include <list>
#include <mutex>

/// The connections that are open. When there are too many, the oldest one makes room, unless it is an event
/// stream: so clients that are slow, or say nothing, keep nobody else out.
///
/// All functions may be called by all threads.
class Connections
{
public:
    /// Counts `socket` in; another connection may be cut off for it. False when there is no room.
    bool add(int socket);
    /// To be called before `socket` is closed.
    void remove(int socket);

    /// Marks an event stream, which lasts.
    void keep(int socket);
    void unkeep(int socket);

    /// Nothing more is read from any client.
    void stopReading();
    /// Cuts all connections off.
    void cutOff();

private:
    struct Connection
    {
        int socket;
        bool kept;
    };

    void setKept(int socket, bool kept);
    void shutDown(int how);

    std::mutex m_mutex;
    std::list<Connection> m_connections;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <optional>

/// The socket on which a program declares itself ready to its service manager. The kernel time-stamps the
/// declaration, so a delay of the reader does not matter.
class ReadinessSocket
{
public:
    using Time = std::chrono::nanoseconds; // since 1970

    /// Throws if the socket cannot be created.
    explicit ReadinessSocket(const QString& path);
    ~ReadinessSocket();

    ReadinessSocket(const ReadinessSocket&) = delete;
    ReadinessSocket& operator=(const ReadinessSocket&) = delete;

    /// Readable when a message has arrived.
    int descriptor() const { return m_socket; }
    /// The time of a readiness declaration since the last call, if any.
    std::optional<Time> takeDeclaration();

private:
    int m_socket;
};

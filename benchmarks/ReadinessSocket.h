// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <optional>

/// Where a program declares itself ready to its service manager. The kernel notes the time of the
/// declaration, so that it does not matter when this process gets to read it.
class ReadinessSocket
{
public:
    using Time = std::chrono::nanoseconds; // since 1970

    /// Throws when the socket cannot be made.
    explicit ReadinessSocket(const QString& path);
    ~ReadinessSocket();

    ReadinessSocket(const ReadinessSocket&) = delete;
    ReadinessSocket& operator=(const ReadinessSocket&) = delete;

    /// Readable when somebody has declared something.
    int descriptor() const { return m_socket; }
    /// When the program declared itself ready; nothing if it has not done so since the last call.
    std::optional<Time> takeDeclaration();

private:
    int m_socket;
};

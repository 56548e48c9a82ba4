// SPDX-License-Identifier: MIT
#pragma once

#include <httplib.h>

#include <QDeadlineTimer>

#include <array>

/// One connection of a client, which carries one request. It bounds the time and the bytes that the client
/// may take for its request, and the time for which it may leave an answer unread.
class ConnectionStream : public httplib::Stream
{
public:
    /// `socket` is closed with this object.
    explicit ConnectionStream(int socket);
    ~ConnectionStream() override;
    ConnectionStream(const ConnectionStream&) = delete;
    ConnectionStream& operator=(const ConnectionStream&) = delete;

    /// The head of the request is there: time and bytes are granted for a body.
    void expectBody();
    /// Nothing more is written. Lets the client take what was written before the connection is closed.
    void finish();

    bool is_readable() const override;
    /// Whether the client is still there.
    bool is_writable() const override;
    /// -1 when the connection, the time or the bytes are at their end.
    ssize_t read(char* data, size_t size) override;
    /// Writes all of `data`; -1 when the client does not take it in time.
    ssize_t write(const char* data, size_t size) override;
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return m_socket; }

private:
    bool fill();
    bool await(short events, const QDeadlineTimer& deadline) const;

    const int m_socket;
    QDeadlineTimer m_deadline;
    size_t m_allowance;
    std::array<char, 4096> m_buffer;
    size_t m_begin = 0;
    size_t m_end = 0;
};

// SPDX-License-Identifier: MIT
#include "workbench/web/ConnectionStream.h"

#include <algorithm>
#include <cerrno>

#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr auto headTime = 5s;
constexpr auto bodyTime = 10s;
constexpr auto writeTime = 10s;
constexpr auto farewellTime = 2s;

constexpr size_t headAllowance = 16 * 1024;
// The greatest body and the framing of its chunks, as long as they are not tiny.
constexpr size_t bodyAllowance = 3 * 1024 * 1024;

bool isPassing(int error)
{
    return error == EINTR || error == EAGAIN;
}

} // namespace

ConnectionStream::ConnectionStream(int socket)
    : m_socket(socket), m_deadline(headTime), m_allowance(headAllowance)
{
    // An event is not to wait until the one before it was acknowledged.
    const int yes = 1;
    setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
}

ConnectionStream::~ConnectionStream()
{
    close(m_socket);
}

void ConnectionStream::expectBody()
{
    m_deadline = QDeadlineTimer(bodyTime);
    m_allowance = bodyAllowance;
}

void ConnectionStream::finish()
{
    // Closing with bytes unread would reset the connection, and the client might lose the answer.
    shutdown(m_socket, SHUT_WR);
    m_deadline = QDeadlineTimer(farewellTime);
    m_allowance = bodyAllowance;
    m_begin = m_end;
    while (fill()) {
        m_begin = m_end;
    }
}

bool ConnectionStream::is_readable() const
{
    return m_begin < m_end || await(POLLIN, QDeadlineTimer(0));
}

bool ConnectionStream::is_writable() const
{
    pollfd poller{m_socket, POLLRDHUP, 0};
    return poll(&poller, 1, 0) == 0;
}

ssize_t ConnectionStream::read(char* data, size_t size)
{
    if (m_begin == m_end && !fill()) {
        return -1;
    }
    const size_t count = std::min(size, m_end - m_begin);
    std::copy_n(m_buffer.begin() + m_begin, count, data);
    m_begin += count;
    return ssize_t(count);
}

ssize_t ConnectionStream::write(const char* data, size_t size)
{
    const QDeadlineTimer deadline(writeTime);
    size_t sent = 0;
    while (sent < size) {
        if (!await(POLLOUT, deadline)) {
            return -1;
        }
        const ssize_t count = send(m_socket, data + sent, size - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0) {
            sent += size_t(count);
        } else if (!isPassing(errno)) {
            return -1;
        }
    }
    return ssize_t(size);
}

void ConnectionStream::get_remote_ip_and_port(std::string& ip, int& port) const
{
    ip = "127.0.0.1";
    port = 0;
}

void ConnectionStream::get_local_ip_and_port(std::string& ip, int& port) const
{
    ip = "127.0.0.1";
    port = 0;
}

bool ConnectionStream::fill()
{
    while (m_allowance > 0 && await(POLLIN, m_deadline)) {
        const ssize_t count =
            recv(m_socket, m_buffer.data(), std::min(m_buffer.size(), m_allowance), MSG_DONTWAIT);
        if (count > 0) {
            m_allowance -= size_t(count);
            m_begin = 0;
            m_end = size_t(count);
            return true;
        }
        if (count == 0 || !isPassing(errno)) {
            return false;
        }
    }
    return false;
}

bool ConnectionStream::await(short events, const QDeadlineTimer& deadline) const
{
    pollfd poller{m_socket, events, 0};
    int ready = -1;
    do {
        ready = poll(&poller, 1, int(deadline.remainingTime()));
    } while (ready == -1 && errno == EINTR);
    return ready == 1;
}

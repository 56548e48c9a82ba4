// SPDX-License-Identifier: MIT
#include "workbench/web/Listener.h"

#include <QTimer>

#include <cerrno>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr int backlog = 64;
constexpr auto recoveryTime = 100ms;

} // namespace

Listener::Listener(QObject* parent) : QObject(parent) {}

Listener::~Listener()
{
    m_notifier.reset();
    if (m_socket != -1) {
        close(m_socket);
    }
}

QString Listener::listen(quint16 port)
{
    m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_socket == -1 || !bindTo(port) || ::listen(m_socket, backlog) == -1) {
        return qt_error_string(errno);
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &Listener::accept);
    return {};
}

bool Listener::bindTo(quint16 port)
{
    // The connections of an earlier run do not hold the port up. Two servers cannot share it nonetheless.
    const int yes = 1;
    setsockopt(m_socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(m_socket, generic, size) == -1 || getsockname(m_socket, generic, &size) == -1) {
        return false;
    }
    m_port = ntohs(address.sin_port);
    return true;
}

void Listener::accept()
{
    const int connection = accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection != -1) {
        Q_EMIT connected(connection);
    } else if (errno != EAGAIN && errno != EINTR && errno != ECONNABORTED) {
        // Out of file descriptors or the like. Who has connected waits, and so must this loop, or it would
        // turn without end.
        m_notifier->setEnabled(false);
        QTimer::singleShot(recoveryTime, m_notifier.get(), [this] { m_notifier->setEnabled(true); });
    }
}

// SPDX-License-Identifier: MIT
#include "control/record/RecorderSocket.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace control {

namespace {

constexpr mode_t socketMode = 0660;
constexpr std::chrono::seconds checkTimeout{5};
constexpr size_t readSize = 65'536;

/// Ends the content, so that a client notices if a part is missing. No key script contains it.
const QByteArray endMark(1, '\0');

bool fill(sockaddr_un& address, const QString& path)
{
    const QByteArray name = QFile::encodeName(path);
    address.sun_family = AF_UNIX;
    if (size_t(name.size()) >= sizeof address.sun_path) {
        return false;
    }
    std::copy(name.begin(), name.end(), address.sun_path);
    return true;
}

/// Limits the time that each call waits.
void setTimeout(int fd, std::chrono::seconds timeout)
{
    timeval time{};
    time.tv_sec = timeout.count();
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
}

/// A connected socket, or -1 with `errno`.
int connectTo(const QString& path, std::chrono::seconds timeout)
{
    sockaddr_un address{};
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd == -1 || !fill(address, path)) {
        return fd;
    }
    setTimeout(fd, timeout);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == -1) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

} // namespace

RecorderSocket::RecorderSocket(std::function<QByteArray()> content, QObject* parent)
    : QObject(parent), m_content(std::move(content))
{}

RecorderSocket::~RecorderSocket()
{
    m_notifier.reset();
    while (!m_clients.empty()) {
        drop(m_clients.front().fd);
    }
    if (m_fd != -1) {
        ::close(m_fd);
    }
}

QString RecorderSocket::listen(const QString& path)
{
    const int other = connectTo(path, checkTimeout);
    if (other != -1) {
        ::close(other);
        return QStringLiteral("A recorder runs already, at %1.").arg(path);
    }
    ::unlink(QFile::encodeName(path).constData()); // of a recorder that was killed
    sockaddr_un address{};
    m_fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    // Before `listen`, nothing can connect.
    const bool listens = m_fd != -1 && fill(address, path) &&
                         ::bind(m_fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                         ::chmod(address.sun_path, socketMode) == 0 && ::listen(m_fd, maxClients) == 0;
    if (!listens) {
        return QStringLiteral("%1 cannot be made: %2.")
            .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
    }
    m_notifier = std::make_unique<QSocketNotifier>(m_fd, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &RecorderSocket::accept);
    return {};
}

void RecorderSocket::accept()
{
    const int fd = ::accept4(m_fd, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (fd == -1) {
        return;
    }
    if (m_clients.size() >= maxClients) {
        drop(m_clients.front().fd);
    }
    m_clients.push_back({fd, m_content() + endMark, nullptr});
    Client& client = m_clients.back();
    client.notifier = std::make_unique<QSocketNotifier>(fd, QSocketNotifier::Write);
    connect(client.notifier.get(), &QSocketNotifier::activated, this, [this, &client] { send(client); });
}

void RecorderSocket::send(Client& client)
{
    const ssize_t sent =
        ::send(client.fd, client.pending.constData(), size_t(client.pending.size()), MSG_NOSIGNAL);
    if (sent == -1 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    client.pending.remove(0, int(std::max<ssize_t>(sent, 0)));
    if (sent == -1 || client.pending.isEmpty()) {
        drop(client.fd);
    }
}

void RecorderSocket::drop(int fd)
{
    const auto client =
        std::find_if(m_clients.begin(), m_clients.end(), [fd](const Client& each) { return each.fd == fd; });
    // The notifier whose signal is being delivered must outlive this call.
    client->notifier->setEnabled(false);
    client->notifier.release()->deleteLater();
    ::close(fd);
    m_clients.erase(client);
}

QByteArray RecorderSocket::fetch(const QString& path, std::chrono::seconds timeout, int& error)
{
    const int fd = connectTo(path, timeout);
    error = fd == -1 ? errno : 0;
    QByteArray content;
    std::array<char, readSize> bytes;
    while (error == 0) {
        const ssize_t size = ::read(fd, bytes.data(), bytes.size());
        if (size == 0) {
            break;
        }
        if (size > 0) {
            content.append(bytes.data(), int(size));
        } else if (errno != EINTR) {
            error = errno;
        }
    }
    if (fd != -1) {
        ::close(fd);
    }
    if (error == EAGAIN) {
        error = ETIMEDOUT;
    }
    if (error == 0 && !content.endsWith(endMark)) {
        error = EPROTO;
    }
    return error == 0 ? content.chopped(endMark.size()) : QByteArray();
}

} // namespace control

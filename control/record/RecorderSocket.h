// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <chrono>
#include <functional>
#include <list>
#include <memory>

namespace control {

/// The socket at which the recorder gives its recording to each client. The access rights of its folder
/// decide who may connect.
class RecorderSocket : public QObject
{
    Q_OBJECT

public:
    /// A client that does not read does not hold up the others; the oldest of more than these is dropped.
    static constexpr int maxClients = 4;

    /// `content` makes what a client gets.
    explicit RecorderSocket(std::function<QByteArray()> content, QObject* parent = nullptr);
    ~RecorderSocket() override;

    /// Makes the socket, which its user and its group may use. Returns an empty string, or a sentence.
    QString listen(const QString& path);

    /// Connects to the socket at `path` and reads everything. Sets `error` to 0 or the number of the system's
    /// error; EPROTO if the recorder ended meanwhile, ETIMEDOUT if it sent nothing for `timeout`.
    static QByteArray fetch(const QString& path, std::chrono::seconds timeout, int& error);

private:
    struct Client
    {
        int fd = -1;
        QByteArray pending;
        std::unique_ptr<QSocketNotifier> notifier;
    };

    void accept();
    void send(Client& client);
    void drop(int fd);

    std::function<QByteArray()> m_content;
    int m_fd = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::list<Client> m_clients;
};

} // namespace control

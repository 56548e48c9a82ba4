// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QString>

#include <memory>

/// The listening socket of a server, for connections from this machine only.
class Listener : public QObject
{
    Q_OBJECT

public:
    explicit Listener(QObject* parent = nullptr);
    ~Listener() override;

    /// Listens at `port`, or at any free one when it is 0. To be called once. Returns why that cannot be, or
    /// an empty text.
    QString listen(quint16 port);

    int socket() const { return m_socket; }
    quint16 port() const { return m_port; }

Q_SIGNALS:
    /// Somebody has connected; `connection` is the receiver's to close.
    void connected(int connection);

private:
    bool bindTo(quint16 port);
    void accept();

    int m_socket = -1;
    quint16 m_port = 0;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

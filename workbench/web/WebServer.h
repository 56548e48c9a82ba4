// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/EventStreams.h"

#include <QSocketNotifier>

#include <list>

class HttpConnection;
class PanelApi;
struct MHD_Connection;
struct MHD_Daemon;

/// Serves the panel's page, and the session behind it, to browsers of this machine. Main thread only.
class WebServer
{
public:
    /// `session` must live as long as the server.
    explicit WebServer(Session& session);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    /// Serves from now on, at any free port when `port` is 0. False on failure; `errorString` says
    /// why.
    bool listen(quint16 port);
    QString errorString() const { return m_error; }
    /// The address of the page; empty while nothing is served.
    QString url() const;
    /// Ends all connections and waits for that. Keys that clients hold are released.
    void stop();

private:
    MHD_Daemon* startDaemon(quint16 port);
    void run();
    HttpConnection* open(MHD_Connection* connection);

    Session& m_session;
    EventStreams m_streams;
    std::unique_ptr<PanelApi> m_api;
    MHD_Daemon* m_daemon = nullptr;
    quint16 m_port = 0;
    /// Oldest first.
    std::list<std::unique_ptr<HttpConnection>> m_connections;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_timer;
    QString m_error;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/EventStreams.h"
#include "workbench/web/PanelApi.h"

#include <QString>

#include <memory>

class Session;
class HttpServer;
class Listener;

/// Serves the panel's page, and the session behind it, to browsers of this machine. All that concerns the
/// session is done on the thread that this object lives on; the connections have threads of their own.
class WebServer
{
public:
    /// `session` must live as long as the server.
    explicit WebServer(Session& session);
    ~WebServer();
    WebServer(const WebServer&) = delete;
    WebServer& operator=(const WebServer&) = delete;

    /// Serves from now on, at any free port when `port` is 0. False when that cannot be; `errorString` tells
    /// why.
    bool listen(quint16 port);
    QString errorString() const { return m_error; }
    /// The address of the page; empty while nothing is served.
    QString url() const;
    /// Ends all connections and waits for that. Keys that clients hold are released.
    void stop();

private:
    EventStreams m_streams;
    PanelApi m_api;
    std::unique_ptr<Listener> m_listener;
    std::unique_ptr<HttpServer> m_server;
    QString m_error;
};

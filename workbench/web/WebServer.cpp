// SPDX-License-Identifier: MIT
#include "workbench/web/WebServer.h"

#include "workbench/web/HttpServer.h"
#include "workbench/web/Listener.h"

WebServer::WebServer(Session& session) : m_streams(session), m_api(session, m_streams) {}

WebServer::~WebServer()
{
    stop();
}

bool WebServer::listen(quint16 port)
{
    stop();
    auto listener = std::make_unique<Listener>();
    if (const QString reason = listener->listen(port); !reason.isEmpty()) {
        m_error = QStringLiteral("The port %1 cannot be served: %2.").arg(port).arg(reason);
        return false;
    }
    m_server = std::make_unique<HttpServer>(listener->socket(), listener->port(), m_api, m_streams);
    QObject::connect(listener.get(), &Listener::connected, listener.get(),
                     [server = m_server.get()](int connection) { server->serve(connection); });
    m_listener = std::move(listener);
    return true;
}

QString WebServer::url() const
{
    return m_listener ? QStringLiteral("http://127.0.0.1:%1/").arg(m_listener->port()) : QString();
}

void WebServer::stop()
{
    m_listener.reset();
    m_server.reset();
}

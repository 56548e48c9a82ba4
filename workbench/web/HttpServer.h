// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/Connections.h"
#include "workbench/web/EventStreams.h"
#include "workbench/web/MainThreadCalls.h"
#include "workbench/web/PanelApi.h"
#include "workbench/web/RequestCheck.h"
#include "workbench/web/WorkerThreads.h"

#include <httplib.h>

/// Serves connections, each on a thread of its own: reads one request, has it answered on the main thread,
/// and closes the connection. Whatever the client sends or leaves out, its thread ends in time.
///
/// The public functions are called on the main thread.
class HttpServer : private httplib::Server
{
public:
    /// `listener` is the listening socket and `port` its port. `api` and `streams` must live as long as the
    /// server.
    HttpServer(int listener, quint16 port, const PanelApi& api, EventStreams& streams);
    /// Ends all connections; requests under way are answered with an error.
    ~HttpServer() override;

    /// Takes over a connection.
    void serve(int socket);

private:
    using Request = httplib::Request;
    using Response = httplib::Response;

    void converse(int socket);
    std::optional<HttpAnswer> refusalOf(const Request& request) const;
    HandlerResponse answerHead(const Request& request, Response& response);
    void answerBody(const Request& request, Response& response, const httplib::ContentReader& reader);
    void answerRoute(const PanelApi::Route& route, HttpRequest request, Response& response);
    void openEvents(Response& response);

    const RequestCheck m_check;
    const PanelApi& m_api;
    EventStreams& m_streams;
    MainThreadCalls m_mainThread;
    Connections m_connections;
    WorkerThreads m_threads;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpAnswer.h"
#include "workbench/web/HttpRequest.h"

#include <QSocketNotifier>
#include <QTimer>

#include <memory>

class PanelApi;
struct MHD_Connection;
struct MHD_Response;

/// One connection of a client, which carries one request. It limits the time for each part of that as a
/// whole; the library's own limit is for silence alone, which a byte now and then would end.
class HttpConnection : public QObject
{
    Q_OBJECT

public:
    /// Exists from the start of `connection` to its end; `api` must live as long. `port` is that of the
    /// server.
    HttpConnection(MHD_Connection* connection, PanelApi& api, quint16 port);
    ~HttpConnection() override;

    bool isStream() const { return m_answer.stream != nullptr; }
    bool isCutOff() const { return m_phase == Phase::Over; }

    /// The library's handler of requests: called with the head, with each part of the body, which it takes,
    /// and at the end, until it has given the answer. False when the connection is to be closed.
    bool proceed(const char* method, const char* path, const char* data, size_t* size);
    /// The library is done with the request.
    void finish();

    /// Answers a request that has come whole, unless it is answered.
    void answer(const HttpAnswer& answer);
    void cutOff();
    /// The server ends. To be called until the connection ends.
    void end();

Q_SIGNALS:
    /// The library must continue with the connection.
    void resumed();

private:
    enum class Phase { Head, Body, Work, Ready, Answer, Refused, Over };

    void enter(Phase phase, std::chrono::milliseconds maxTime);
    void takeHead(const char* method, const char* path);
    void work();
    void check();
    void refuse(const HttpAnswer& refusal);
    void onTimeout();
    void respond();
    MHD_Response* makeStream();
    void suspend();
    void resume();
    ssize_t takeEvents(char* data, size_t maxSize);

    MHD_Connection* const m_connection;
    const int m_socket;
    PanelApi& m_api;
    const quint16 m_port;
    Phase m_phase = Phase::Head;
    QTimer m_timer;
    bool m_isSuspended = false;
    HttpRequest m_request;
    HttpAnswer m_answer;
    std::unique_ptr<QSocketNotifier> m_departure;
};

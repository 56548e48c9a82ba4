// SPDX-License-Identifier: MIT
#pragma once

#include "tests/workbench/web/EventReader.h"
#include "tests/workbench/web/HttpClient.h"
#include "workbench/session/Session.h"
#include "workbench/web/WebServer.h"

#include <QObject>

#include <memory>

/// The base of tests of the server: each test function has a session, whose device does not run, and a
/// server.
class WebTest : public QObject
{
    Q_OBJECT

protected:
    /// Creates the session and the server again, with `options`.
    void begin();

    Session& session() { return *m_session; }
    WebServer& server() { return *m_server; }
    quint16 port() const;

    /// A request with the right Host; `headers` are whole lines.
    QByteArray request(const QByteArray& line, const QByteArray& headers = {},
                       const QByteArray& body = {}) const;
    QByteArray getRequest(const QByteArray& path, const QByteArray& headers = {}) const;
    QByteArray postRequest(const QByteArray& path, const QByteArray& body,
                           const QByteArray& headers = {}) const;

    HttpReply send(const QByteArray& bytes) const;
    HttpReply get(const QByteArray& path, const QByteArray& headers = {}) const;
    HttpReply post(const QByteArray& path, const QByteArray& body, const QByteArray& headers = {}) const;
    /// Whether the server answers a request now.
    bool isServing() const;

    /// The session reports an entry, which has `size` bytes or more.
    void addEntry(int id, int size = 0);

    DeviceOptions options;

protected Q_SLOTS:
    virtual void init();
    virtual void cleanup();

private:
    std::unique_ptr<Session> m_session;
    std::unique_ptr<WebServer> m_server;
};

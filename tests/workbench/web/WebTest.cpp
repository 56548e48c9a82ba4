// SPDX-License-Identifier: MIT
#include "tests/workbench/web/WebTest.h"

#include <QUrl>
#include <QtTest>

quint16 WebTest::port() const
{
    return quint16(QUrl(m_server->url()).port());
}

QByteArray WebTest::request(const QByteArray& line, const QByteArray& headers, const QByteArray& body) const
{
    return line + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port()) + "\r\n" + headers + "\r\n" +
           body;
}

QByteArray WebTest::getRequest(const QByteArray& path, const QByteArray& headers) const
{
    return request("GET " + path, headers);
}

QByteArray WebTest::postRequest(const QByteArray& path, const QByteArray& body,
                                const QByteArray& headers) const
{
    return request("POST " + path, "Content-Length: " + QByteArray::number(body.size()) + "\r\n" + headers,
                   body);
}

HttpReply WebTest::send(const QByteArray& bytes) const
{
    HttpClient client(port());
    client.send(bytes);
    return client.reply();
}

HttpReply WebTest::get(const QByteArray& path, const QByteArray& headers) const
{
    return send(getRequest(path, headers));
}

HttpReply WebTest::post(const QByteArray& path, const QByteArray& body, const QByteArray& headers) const
{
    return send(postRequest(path, body, headers));
}

bool WebTest::isServing() const
{
    return get("/api/device").status == 200;
}

void WebTest::addEntry(int id, int size)
{
    Q_EMIT session().added({id, {}, entry::LogLine{QString(size, QLatin1Char('x'))}});
}

void WebTest::init()
{
    options = {};
    begin();
}

void WebTest::begin()
{
    WebTest::cleanup();
    m_session = std::make_unique<Session>(options);
    m_server = std::make_unique<WebServer>(*m_session);
    QVERIFY2(m_server->listen(0), qPrintable(m_server->errorString()));
}

void WebTest::cleanup()
{
    m_server.reset();
    m_session.reset();
}

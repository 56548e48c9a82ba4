// SPDX-License-Identifier: MIT
#include "tests/workbench/web/WebTest.h"

#include <QtTest>

#include <ctime>

namespace {

constexpr int mebibyte = 1024 * 1024;

/// What a clock of processor time shows, in microseconds.
qint64 processorTime(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * 1'000'000 + time.tv_nsec / 1000;
}

/// A request in which the port of the server is to be put in the place of "PORT".
QByteArray requestOf(const QByteArray& line, const QByteArray& headers = {}, const QByteArray& body = {})
{
    return line + " HTTP/1.1\r\nHost: localhost:PORT\r\n" + headers + "\r\n" + body;
}

QByteArray chunked(const QByteArray& body)
{
    QByteArray chunks;
    constexpr int size = 50'000;
    for (int begin = 0; begin < body.size(); begin += size) {
        const QByteArray chunk = body.mid(begin, size);
        chunks += QByteArray::number(chunk.size(), 16) + "\r\n" + chunk + "\r\n";
    }
    return chunks + "0\r\n\r\n";
}

} // namespace

/// Which requests are answered, which are refused, and with what words.
class RequestTest : public WebTest
{
    Q_OBJECT

private Q_SLOTS:
    void thePageIsServed_data();
    void thePageIsServed();
    void everyAnswerKeepsThePageToItself_data();
    void everyAnswerKeepsThePageToItself();
    void aHeadHasNoBody();
    void onlyThisMachineIsAHost_data();
    void onlyThisMachineIsAHost();
    void pagesOfOtherSitesAreRefused_data();
    void pagesOfOtherSitesAreRefused();
    void otherSitesMayLinkToThePage();
    void whatIsNotThereIsToldSo_data();
    void whatIsNotThereIsToldSo();
    void theOtherMethodIsNamed_data();
    void theOtherMethodIsNamed();
    void aBodyOfOneMebibyteIsTaken_data();
    void aBodyOfOneMebibyteIsTaken();
    void aGreaterBodyIsRefused_data();
    void aGreaterBodyIsRefused();
    void aCompressedBodyIsRefused();
    void aBodyThatCannotBeReadIsRefused_data();
    void aBodyThatCannotBeReadIsRefused();
    void aBodyMayBeLeftOut();
    void whatIsNoRequestIsRefused_data();
    void whatIsNoRequestIsRefused();
    void malformedRequestsAreRefused_data();
    void malformedRequestsAreRefused();
    void faultyRestartsAreExplained_data();
    void faultyRestartsAreExplained();
    void textThatIsNoTextIsRefused_data();
    void textThatIsNoTextIsRefused();
    void faultyScriptsAreExplained();
    void scriptsAreReadWithoutHoldingTheSessionUp();
    void aClientWithoutStreamHoldsNoKeys_data();
    void aClientWithoutStreamHoldsNoKeys();
    void partsOfAnAnswerAreNotSent();
    void twoServersDoNotShareAPort();
    void aPortIsServedAgainAtOnce();
};

void RequestTest::thePageIsServed_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("page") << QByteArray("/") << QByteArray("text/html; charset=utf-8")
                          << QByteArray("<!DOCTYPE html>");
    QTest::newRow("style") << QByteArray("/style.css") << QByteArray("text/css; charset=utf-8")
                           << QByteArray("SPDX-License-Identifier");
    QTest::newRow("script") << QByteArray("/main.js") << QByteArray("text/javascript; charset=utf-8")
                            << QByteArray("SPDX-License-Identifier");
    QTest::newRow("timeline") << QByteArray("/timeline.js") << QByteArray("text/javascript; charset=utf-8")
                              << QByteArray("SPDX-License-Identifier");
}

void RequestTest::thePageIsServed()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, type);
    QFETCH(QByteArray, content);
    const HttpReply reply = get(path);
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.headers.value("content-type"), type);
    QVERIFY(reply.body.contains(content));
    QCOMPARE(reply.body.size(), reply.headers.value("content-length").toInt());
}

void RequestTest::everyAnswerKeepsThePageToItself_data()
{
    QTest::addColumn<QByteArray>("path");
    for (const char* path : {"/", "/main.js", "/api/device", "/nothing"}) {
        QTest::newRow(path) << QByteArray(path);
    }
}

void RequestTest::everyAnswerKeepsThePageToItself()
{
    QFETCH(QByteArray, path);
    const QMap<QByteArray, QByteArray> headers = get(path).headers;
    QVERIFY(headers.value("content-security-policy").startsWith("default-src 'self'; "));
    QVERIFY(!headers.value("content-security-policy").contains("unsafe"));
    QCOMPARE(headers.value("x-content-type-options"), QByteArray("nosniff"));
    QCOMPARE(headers.value("referrer-policy"), QByteArray("no-referrer"));
    QCOMPARE(headers.value("cross-origin-resource-policy"), QByteArray("same-origin"));
    QCOMPARE(headers.value("cache-control"), QByteArray("no-store"));
    QCOMPARE(headers.value("connection"), QByteArray("close"));
}

void RequestTest::aHeadHasNoBody()
{
    const HttpReply reply = send(request("HEAD /"));
    QCOMPARE(reply.status, 200);
    QCOMPARE(reply.headers.value("content-length").toInt(), get("/").body.size());
    QCOMPARE(reply.body, QByteArray());
}

void RequestTest::onlyThisMachineIsAHost_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<int>("status");
    QTest::newRow("address") << QByteArray("Host: 127.0.0.1:PORT\r\n") << 200;
    QTest::newRow("name") << QByteArray("Host: localhost:PORT\r\n") << 200;
    QTest::newRow("name in capitals") << QByteArray("host: LocalHost:PORT\r\n") << 200;
    QTest::newRow("other address") << QByteArray("Host: [::1]:PORT\r\n") << 200;
    QTest::newRow("foreign name") << QByteArray("Host: panel.example:PORT\r\n") << 403;
    QTest::newRow("name that begins alike") << QByteArray("Host: localhost.example:PORT\r\n") << 403;
    QTest::newRow("other port") << QByteArray("Host: localhost:1\r\n") << 403;
    QTest::newRow("no port") << QByteArray("Host: localhost\r\n") << 403;
    QTest::newRow("any address") << QByteArray("Host: 0.0.0.0:PORT\r\n") << 403;
    QTest::newRow("empty") << QByteArray("Host: \r\n") << 403;
    QTest::newRow("none") << QByteArray() << 403;
    QTest::newRow("two") << QByteArray("Host: localhost:PORT\r\nHost: panel.example:PORT\r\n") << 403;
}

void RequestTest::onlyThisMachineIsAHost()
{
    QFETCH(QByteArray, lines);
    QFETCH(int, status);
    lines.replace("PORT", QByteArray::number(port()));
    for (const char* path : {"/", "/api/device"}) {
        const HttpReply reply = send(QByteArray("GET ") + path + " HTTP/1.1\r\n" + lines + "\r\n");
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.error(),
                 status == 200 ? QString()
                               : QStringLiteral("The Host of the request is not this server's address."));
    }
}

void RequestTest::pagesOfOtherSitesAreRefused_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("refused");
    QTest::newRow("nothing said") << QByteArray() << false;
    QTest::newRow("own origin") << QByteArray("Origin: http://127.0.0.1:PORT\r\n") << false;
    QTest::newRow("other name of this machine") << QByteArray("Origin: http://localhost:PORT\r\n") << true;
    QTest::newRow("other port") << QByteArray("Origin: http://127.0.0.1:1\r\n") << true;
    QTest::newRow("other scheme") << QByteArray("Origin: https://127.0.0.1:PORT\r\n") << true;
    QTest::newRow("other site") << QByteArray("Origin: http://panel.example\r\n") << true;
    QTest::newRow("file") << QByteArray("Origin: null\r\n") << true;
    QTest::newRow("same-origin") << QByteArray("Sec-Fetch-Site: same-origin\r\n") << false;
    QTest::newRow("the person") << QByteArray("Sec-Fetch-Site: none\r\n") << false;
    QTest::newRow("same-site") << QByteArray("Sec-Fetch-Site: same-site\r\n") << true;
    QTest::newRow("cross-site") << QByteArray("Sec-Fetch-Site: cross-site\r\n") << true;
}

void RequestTest::pagesOfOtherSitesAreRefused()
{
    QFETCH(QByteArray, line);
    QFETCH(bool, refused);
    line.replace("PORT", QByteArray::number(port()));
    QCOMPARE(post("/api/replay/stop", {}, line).status, refused ? 403 : 200);
    QCOMPARE(get("/api/device", line).status, refused ? 403 : 200);
    if (refused) {
        QCOMPARE(get("/api/events", line).error(),
                 QStringLiteral("The request comes from a page of another site."));
    }
}

void RequestTest::otherSitesMayLinkToThePage()
{
    QCOMPARE(get("/", "Sec-Fetch-Site: cross-site\r\n").status, 200);
}

void RequestTest::whatIsNotThereIsToldSo_data()
{
    QTest::addColumn<QByteArray>("target");
    for (const char* target :
         {"GET /nothing", "GET /index.htm", "GET /page.qrc", "GET /api", "GET /api/", "GET /api/device/",
          "GET //api/device", "GET /../../etc/passwd", "GET /%2e%2e/%2e%2e/etc/passwd", "GET /main.js%00",
          "GET :/page/index.html", "POST /api/nothing", "PUT /nothing", "DELETE /nothing", "OPTIONS /nothing",
          "GET http://127.0.0.1/"}) {
        QTest::newRow(target) << QByteArray(target);
    }
}

void RequestTest::whatIsNotThereIsToldSo()
{
    QFETCH(QByteArray, target);
    const HttpReply reply = send(request(target, "Content-Length: 3\r\n", "abc"));
    QCOMPARE(reply.status, 404);
    QCOMPARE(reply.error(), QStringLiteral("There is nothing at this address."));
}

void RequestTest::theOtherMethodIsNamed_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("method");
    for (const char* target : {"POST /", "DELETE /main.js", "POST /api/device", "PUT /api/key-lists",
                               "OPTIONS /api/card", "POST /api/events", "HEAD /api/events"}) {
        QTest::newRow(target) << QByteArray(target) << QByteArray("GET");
    }
    for (const char* target : {"GET /api/steps", "HEAD /api/steps", "PUT /api/restart", "PATCH /api/replay",
                               "OPTIONS /api/steps"}) {
        QTest::newRow(target) << QByteArray(target) << QByteArray("POST");
    }
    QTest::newRow("PUT /api/findings") << QByteArray("PUT /api/findings") << QByteArray("GET, POST");
}

void RequestTest::theOtherMethodIsNamed()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, method);
    const HttpReply reply = send(request(target, "Content-Length: 3\r\n", "abc"));
    QCOMPARE(reply.status, 405);
    QCOMPARE(reply.headers.value("allow"), method);
    if (!target.startsWith("HEAD")) {
        QCOMPARE(reply.error(), "The method here is " + method.replace(", ", " or ") + '.');
    }
}

void RequestTest::aBodyOfOneMebibyteIsTaken_data()
{
    QTest::addColumn<bool>("inChunks");
    QTest::newRow("of known length") << false;
    QTest::newRow("in chunks") << true;
}

void RequestTest::aBodyOfOneMebibyteIsTaken()
{
    QFETCH(bool, inChunks);
    const QByteArray body(mebibyte, ' ');
    const HttpReply reply =
        inChunks ? send(request("POST /api/replay/stop", "Transfer-Encoding: chunked\r\n", chunked(body)))
                 : post("/api/replay/stop", body);
    QCOMPARE(reply.status, 200);
}

void RequestTest::aGreaterBodyIsRefused_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("body");
    const QByteArray large(mebibyte + 1, ' ');
    QTest::newRow("of known length") << QByteArray("Content-Length: 1048577") << large;
    QTest::newRow("announced only") << QByteArray("Content-Length: 1048577") << QByteArray();
    QTest::newRow("announced with zeros") << QByteArray("Content-Length: 000001048577") << QByteArray();
    QTest::newRow("in chunks") << QByteArray("Transfer-Encoding: chunked") << chunked(large);
    QTest::newRow("much greater") << QByteArray("Transfer-Encoding: chunked") << chunked(large + large);
    QTest::newRow("after a question")
        << QByteArray("Expect: 100-continue\r\nContent-Length: 1048577") << large;
}

void RequestTest::aGreaterBodyIsRefused()
{
    QFETCH(QByteArray, header);
    QFETCH(QByteArray, body);
    HttpClient client(port());
    client.send(request("POST /api/steps", header + "\r\n", body));
    QVERIFY(client.awaitEnd());
    QByteArray answer = client.received();
    if (answer.startsWith("HTTP/1.1 100 ")) {
        answer = answer.mid(answer.indexOf("\r\n\r\n") + 4);
    }
    QCOMPARE(HttpReply::parse(answer).status, 413);
    QCOMPARE(HttpReply::parse(answer).error(), QStringLiteral("The body is greater than 1 MiB."));
}

void RequestTest::aCompressedBodyIsRefused()
{
    const HttpReply reply = post("/api/steps", "\x1f\x8b", "Content-Encoding: gzip\r\n");
    QCOMPARE(reply.status, 415);
    QCOMPARE(reply.error(), QStringLiteral("A compressed body is not taken."));
}

void RequestTest::aBodyThatCannotBeReadIsRefused_data()
{
    QTest::addColumn<QByteArray>("headers");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("two lengths") << QByteArray("Content-Length: 3\r\nContent-Length: 4\r\n")
                                 << QByteArray("abcd");
    QTest::newRow("length and chunks")
        << QByteArray("Content-Length: 3\r\nTransfer-Encoding: chunked\r\n") << chunked("abc");
    QTest::newRow("unknown encoding") << QByteArray("Transfer-Encoding: gzip, chunked\r\n") << chunked("abc");
    QTest::newRow("fewer bytes") << QByteArray("Content-Length: 5\r\n") << QByteArray("abc");
    QTest::newRow("half a chunk") << QByteArray("Transfer-Encoding: chunked\r\n") << QByteArray("5\r\nabc");
    QTest::newRow("chunk of all sizes")
        << QByteArray("Transfer-Encoding: chunked\r\n") << QByteArray("ffffffffffffffff\r\nabc");
    QTest::newRow("no last chunk") << QByteArray("Transfer-Encoding: chunked\r\n")
                                   << QByteArray("3\r\nabc\r\n");
}

void RequestTest::aBodyThatCannotBeReadIsRefused()
{
    QFETCH(QByteArray, headers);
    QFETCH(QByteArray, body);
    HttpClient client(port());
    client.send(request("POST /api/steps", headers, body));
    // Until the server has taken that: an end that comes with it is seen when the time for the body is over.
    QVERIFY(isServing());
    client.endSending();
    const HttpReply reply = client.reply();
    QCOMPARE(reply.status, 400);
    QVERIFY2(reply.error().endsWith('.'), reply.body.constData());
}

void RequestTest::aBodyMayBeLeftOut()
{
    QCOMPARE(send(request("POST /api/replay/stop")).status, 200);
}

void RequestTest::whatIsNoRequestIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    QTest::newRow("unknown method") << requestOf("PRESS /") << 400;
    QTest::newRow("long address") << requestOf("GET /" + QByteArray(9000, 'a')) << 414;
    QTest::newRow("long header") << requestOf("GET /", "A: " + QByteArray(9000, 'a') + "\r\n") << 400;
    QTest::newRow("many headers") << requestOf("GET /", QByteArray("A: b\r\n").repeated(400)) << 200;
    QTest::newRow("too many headers")
        << requestOf("GET /", ("A: " + QByteArray(100, 'b') + "\r\n").repeated(200)) << 400;
    QTest::newRow("half a line") << QByteArray("GET / HT") << 0;
    QTest::newRow("half a head") << QByteArray("GET / HTTP/1.1\r\nHost: ") << 0;
    QTest::newRow("nothing") << QByteArray() << 0;
}

void RequestTest::whatIsNoRequestIsRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    HttpClient client(port());
    client.send(bytes.replace("PORT", QByteArray::number(port())));
    client.endSending();
    const HttpReply reply = client.reply();
    QCOMPARE(reply.status, status);
    QCOMPARE(reply.error().isEmpty(), status < 400);
    QVERIFY(isServing());
}

void RequestTest::malformedRequestsAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    const QByteArray chunks = "Transfer-Encoding: chunked\r\n";
    QTest::newRow("bytes") << QByteArray("\x00\xff\x80\r\n\r\n", 7) << 0;
    QTest::newRow("no version") << QByteArray("GET /\r\n\r\n") << 400;
    QTest::newRow("other version") << QByteArray("GET / HTTP/2.0\r\n\r\n") << 505;
    QTest::newRow("endless line") << QByteArray(mebibyte, 'a') << 414;
    QTest::newRow("endless header") << "GET / HTTP/1.1\r\nA: " + QByteArray(mebibyte, 'a') << 431;
    QTest::newRow("endless headers") << "GET / HTTP/1.1\r\n" + QByteArray("A: b\r\n").repeated(100'000)
                                     << 431;
    for (const char* length : {"-1", "three", "", "3, 3", "0x3"}) {
        QTest::addRow("length \"%s\"", length)
            << requestOf("POST /api/steps", QByteArray("Content-Length: ") + length + "\r\n", "abc") << 400;
    }
    QTest::newRow("length beyond all numbers")
        << requestOf("POST /api/steps", "Content-Length: 99999999999999999999999\r\n") << 413;
    QTest::newRow("no chunk") << requestOf("POST /api/steps", chunks, "zz\r\n") << 400;
    QTest::newRow("chunk size without end")
        << requestOf("POST /api/steps", chunks, QByteArray(4 * mebibyte, '1')) << 413;
}

void RequestTest::malformedRequestsAreRefused()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, status);
    HttpClient client(port());
    client.send(bytes.replace("PORT", QByteArray::number(port())));
    QVERIFY(client.awaitEnd());
    // The library answers these, in its own words, and at once: to a client that still sends the answer may
    // be lost.
    const int actual = HttpReply::parse(client.received()).status;
    QVERIFY2(actual == status || actual == 0, QByteArray::number(actual));
    QVERIFY(isServing());
}

void RequestTest::faultyRestartsAreExplained_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no JSON") << QByteArray("model")
                             << QStringLiteral("The JSON is faulty in line 1, column 2: illegal value.");
    QTest::newRow("in the second line")
        << QByteArray("{\n  \"model\": Orvane}")
        << QStringLiteral("The JSON is faulty in line 2, column 12: illegal number.");
    QTest::newRow("no UTF-8") << QByteArray("{\"model\": \"\xff\"}")
                              << QStringLiteral(
                                     "The JSON is faulty in line 1, column 12: invalid UTF8 string.");
    QTest::newRow("deep") << QByteArray(mebibyte, '[')
                          << QStringLiteral(
                                 "The JSON is faulty in line 1, column 1026: too deeply nested document.");
    QTest::newRow("deep objects")
        << QByteArray("{\"a\":").repeated(100'000)
        << QStringLiteral("The JSON is faulty in line 1, column 5122: too deeply nested document.");
    QTest::newRow("no object") << QByteArray("[]") << QStringLiteral("The JSON is not an object.");
    QTest::newRow("unknown member") << QByteArray("{\"colour\": 1}")
                                    << QStringLiteral(
                                           "The members of a restart are model, state and keyLists.");
    QTest::newRow("model of another type")
        << QByteArray("{\"model\": 1}") << QStringLiteral("The member \"model\" is not a text.");
    QTest::newRow("state of another type")
        << QByteArray("{\"state\": null}") << QStringLiteral("The member \"state\" is not a text.");
    QTest::newRow("lists of another type")
        << QByteArray("{\"keyLists\": []}")
        << QStringLiteral("The member \"keyLists\" is neither an object nor null.");
    QTest::newRow("list of another type") << QByteArray("{\"keyLists\": {\"longKeyList.json\": []}}")
                                          << QStringLiteral("The content of longKeyList.json is not a text.");
    QTest::newRow("file elsewhere") << QByteArray("{\"keyLists\": {\"../x.json\": \"\"}}")
                                    << QStringLiteral("Unknown key list \"../x.json\".");
    QTest::newRow("unknown model") << QByteArray("{\"model\": \"Xyz\"}")
                                   << QStringLiteral("Unknown model \"Xyz\"; known models: Orvane, Pellit.");
}

void RequestTest::faultyRestartsAreExplained()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, sentence);
    for (const char* path : {"/api/restart", "/api/findings", "/api/diff"}) {
        const HttpReply reply = post(path, body);
        QCOMPARE(reply.status, 400);
        QCOMPARE(reply.error(), sentence);
    }
}

void RequestTest::textThatIsNoTextIsRefused_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("steps") << QByteArray("/api/steps");
    QTest::newRow("replay") << QByteArray("/api/replay");
}

void RequestTest::textThatIsNoTextIsRefused()
{
    QFETCH(QByteArray, path);
    for (const char* body : {"\xff\xfe", "console \xc3", "\xed\xa0\x80", "\xc0\xaf"}) {
        const HttpReply reply = post(path, body);
        QCOMPARE(reply.status, 400);
        QCOMPARE(reply.error(), QStringLiteral("The body is not UTF-8 text."));
    }
}

void RequestTest::faultyScriptsAreExplained()
{
    const HttpReply reply = post("/api/replay", "tap Up\nwait a while\ntap Nothing\n");
    QCOMPARE(reply.status, 400);
    QCOMPARE(reply.error(), QStringLiteral("\"a while\" is not a time from 0 to 86400000 ms."));
    const QJsonArray faults = reply.json().value(QStringLiteral("faults")).toArray();
    QCOMPARE(faults.size(), 2);
    QCOMPARE(faults.at(0).toObject().value(QStringLiteral("line")).toInt(), 2);
    QCOMPARE(faults.at(0).toObject().value(QStringLiteral("text")).toString(), reply.error());
    QCOMPARE(faults.at(1).toObject().value(QStringLiteral("line")).toInt(), 3);
}

void RequestTest::scriptsAreReadWithoutHoldingTheSessionUp()
{
    HttpClient client(port());
    // In processor time: how long others keep the processor does not count.
    const qint64 before = processorTime(CLOCK_PROCESS_CPUTIME_ID);
    const qint64 ownBefore = processorTime(CLOCK_THREAD_CPUTIME_ID);
    client.send(postRequest("/api/replay", QByteArray("tap Up\n").repeated(49'000) + "wait a while\n"));
    QCOMPARE(client.reply().error(), QStringLiteral("\"a while\" is not a time from 0 to 86400000 ms."));
    const qint64 own = processorTime(CLOCK_THREAD_CPUTIME_ID) - ownBefore;
    const qint64 all = processorTime(CLOCK_PROCESS_CPUTIME_ID) - before;
    QVERIFY2(own * 2 < all, qPrintable(QStringLiteral("%1 of %2 us").arg(own).arg(all)));
}

void RequestTest::aClientWithoutStreamHoldsNoKeys_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("header");
    QTest::newRow("header") << QByteArray("/api/steps") << QByteArray("X-Client: 1\r\n");
    QTest::newRow("query") << QByteArray("/api/steps?client=1") << QByteArray();
    QTest::newRow("no number") << QByteArray("/api/steps?client=me") << QByteArray();
    QTest::newRow("negative") << QByteArray("/api/steps") << QByteArray("X-Client: -1\r\n");
    QTest::newRow("too great") << QByteArray("/api/steps") << QByteArray("X-Client: 99999999999\r\n");
}

void RequestTest::aClientWithoutStreamHoldsNoKeys()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, header);
    const HttpReply reply = post(path, "press Up", header);
    QCOMPARE(reply.status, 400);
    QCOMPARE(reply.error(), QStringLiteral("There is no event stream of that client."));
}

void RequestTest::partsOfAnAnswerAreNotSent()
{
    const HttpReply whole = get("/");
    for (const char* range : {"0-9", "-9", "0-,0-,0-,0-,0-", "5-3", "99999999999999999999999-"}) {
        const HttpReply reply = get("/", QByteArray("Range: bytes=") + range + "\r\n");
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.body, whole.body);
    }
}

void RequestTest::twoServersDoNotShareAPort()
{
    Session otherSession(options);
    WebServer second(otherSession);
    QVERIFY(!second.listen(port()));
    QCOMPARE(second.errorString(),
             QStringLiteral("The port %1 cannot be served: Address already in use.").arg(port()));
    QCOMPARE(second.url(), QString());
    QVERIFY(isServing());
}

void RequestTest::aPortIsServedAgainAtOnce()
{
    const quint16 used = port();
    QVERIFY(isServing());
    server().stop();
    QCOMPARE(server().url(), QString());
    QVERIFY2(server().listen(used), qPrintable(server().errorString()));
    QCOMPARE(port(), used);
    QVERIFY(isServing());
}

QTEST_GUILESS_MAIN(RequestTest)
#include "RequestTest.moc"

// SPDX-License-Identifier: MIT
#include "tests/support/Attempts.h"
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"
#include "tests/workbench/web/WebTest.h"

#include <QDir>
#include <QtTest>

#include <ctime>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int someClients = 30;
constexpr int manyClients = 150;
constexpr int maximumConnections = 64;
constexpr rlim_t fewFiles = 200;
constexpr int waitMs = 400;
// More than the system buffers.
constexpr int largeAnswer = 32'000'000;

/// Takes all file descriptors that this process can have.
class ScarceFiles
{
public:
    ScarceFiles()
    {
        getrlimit(RLIMIT_NOFILE, &m_usual);
        rlimit few = m_usual;
        few.rlim_cur = fewFiles;
        setrlimit(RLIMIT_NOFILE, &few);
        for (int file = dup(STDERR_FILENO); file != -1; file = dup(STDERR_FILENO)) {
            m_files.append(file);
        }
    }
    ~ScarceFiles()
    {
        spareAll();
        setrlimit(RLIMIT_NOFILE, &m_usual);
    }
    ScarceFiles(const ScarceFiles&) = delete;
    ScarceFiles& operator=(const ScarceFiles&) = delete;

    void spareOne() { close(m_files.takeLast()); }
    void spareAll()
    {
        while (!m_files.isEmpty()) {
            spareOne();
        }
    }

private:
    rlimit m_usual{};
    QVector<int> m_files;
};

} // namespace

/// Clients that take their time, come in crowds or go away.
class ConnectionTest : public WebTest
{
    Q_OBJECT

private Q_SLOTS:
    void silentClientsKeepNobodyWaiting();
    void silentClientsAreCutOff();
    void slowClientsKeepNobodyWaiting();
    void slowClientsAreCutOff_data();
    void slowClientsAreCutOff();
    void slowReadersAreCutOff();
    void clientsThatTakeNoAnswerKeepNobodyWaiting();
    void clientsThatStopInTheMiddleAreCutOff();
    void aCrowdOfClientsKeepsNobodyWaiting();
    void streamsOutlastACrowd();
    void clientsMayEndTheirSideFirst();
    void onlyTheFirstRequestIsAnswered();
    void aClientThatGoesAwayLeavesNothing();
    void whenThereAreNoMoreFilesClientsWait();
    void stoppingEndsStreams();
    void stoppingEndsSilentClients();
    void aRequestUnderWayIsToldThatTheServerEnds();
    void theSessionMayEndAfterTheServer();

private:
    using Clients = std::vector<std::unique_ptr<HttpClient>>;

    Clients connectClients(int count, const QByteArray& bytes = {});
    /// What is wrong when the server should answer so many requests before it cuts off these clients.
    QString faultWhileWaiting(const Clients& clients, const QByteArray& drop, int requests);
};

ConnectionTest::Clients ConnectionTest::connectClients(int count, const QByteArray& bytes)
{
    Clients clients;
    for (int client = 0; client < count; ++client) {
        clients.push_back(std::make_unique<HttpClient>(port()));
        clients.back()->send(bytes);
        clients.back()->flush();
    }
    return clients;
}

QString ConnectionTest::faultWhileWaiting(const Clients& clients, const QByteArray& drop, int requests)
{
    for (int request = 0; request < requests; ++request) {
        for (const auto& client : clients) {
            client->send(drop);
        }
        if (!isServing()) {
            return QStringLiteral("A request is not answered.");
        }
    }
    // They are still there, so it was not by their end that there was room.
    const bool areThere =
        std::all_of(clients.begin(), clients.end(), [](const auto& client) { return client->isConnected(); });
    return areThere ? QString() : QStringLiteral("The answers take longer than a client may.");
}

void ConnectionTest::silentClientsKeepNobodyWaiting()
{
    const auto attempt = [this] { return faultWhileWaiting(connectClients(someClients), {}, 5); };
    QCOMPARE(Attempts::outcome(attempt), QString());
}

void ConnectionTest::silentClientsAreCutOff()
{
    HttpClient client(port());
    QVERIFY(client.awaitEnd());
    QCOMPARE(client.received(), QByteArray());
}

void ConnectionTest::slowClientsKeepNobodyWaiting()
{
    const auto attempt = [this] {
        return faultWhileWaiting(connectClients(someClients, "GET / HTTP/1.1\r\nA: "), "b", 10);
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
}

void ConnectionTest::slowClientsAreCutOff_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QByteArray>("drop");
    QTest::addColumn<int>("status");
    const QByteArray post = "POST /api/steps HTTP/1.1\r\nHost: localhost:PORT\r\n";
    const QByteArray chunked = post + "Transfer-Encoding: chunked\r\n\r\n";
    const QByteArray drop = "b";
    QTest::newRow("line") << QByteArray("GET /") << drop << 0;
    QTest::newRow("head") << QByteArray("GET / HTTP/1.1\r\nA: ") << drop << 0;
    QTest::newRow("body") << post + "Content-Length: 100000\r\n\r\n" << drop << 400;
    QTest::newRow("chunks") << chunked << QByteArray("1\r\nb\r\n") << 400;
    QTest::newRow("size of a chunk") << chunked + "1;" << drop << 400;
    QTest::newRow("trailer") << chunked + "0\r\nA: " << drop << 400;
    QTest::newRow("refused body") << post + "Origin: null\r\nContent-Length: 100000\r\n\r\n" << drop << 403;
}

void ConnectionTest::slowClientsAreCutOff()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QByteArray, drop);
    QFETCH(int, status);
    // A byte now and then does not prolong the time for the whole.
    HttpClient client(port());
    client.send(bytes.replace("PORT", QByteArray::number(port())));
    QTimer drip;
    connect(&drip, &QTimer::timeout, this, [&] { client.send(drop); });
    drip.start(100);
    QCOMPARE(client.reply().status, status);
}

void ConnectionTest::slowReadersAreCutOff()
{
    options.keyLists.insert(QStringLiteral("longKeyList.json"), QByteArray(largeAnswer, ' '));
    begin();
    const int before = ProcessFigures::ownDescriptors();
    HttpClient client(port());
    client.stopReading();
    client.send(getRequest("/api/key-lists"));
    QTimer drip;
    connect(&drip, &QTimer::timeout, this, [&] { client.readSome(10'000); });
    drip.start(100);
    WAIT_FOR(client.received().size() > 0);
    // This side of the connection is all that is left of it.
    WAIT_FOR_EQUAL(ProcessFigures::ownDescriptors(), before + 1);
    drip.stop();
    client.goOnReading();
    QVERIFY(client.awaitEnd());
    QVERIFY(client.received().size() < largeAnswer);
}

void ConnectionTest::clientsThatTakeNoAnswerKeepNobodyWaiting()
{
    // Answers that are greater than what the system buffers.
    options.keyLists.insert(QStringLiteral("longKeyList.json"), QByteArray(8'000'000, ' '));
    begin();
    const Clients clients = connectClients(10);
    for (const auto& client : clients) {
        client->stopReading();
        client->send(getRequest("/api/key-lists"));
    }
    for (int request = 0; request < 5; ++request) {
        QVERIFY(isServing());
    }
}

void ConnectionTest::clientsThatStopInTheMiddleAreCutOff()
{
    options.keyLists.insert(QStringLiteral("longKeyList.json"), QByteArray(8'000'000, ' '));
    begin();
    const int before = ProcessFigures::ownDescriptors();
    HttpClient ofRequest(port());
    ofRequest.send(postRequest("/api/steps", "tap Up").chopped(3));
    HttpClient ofAnswer(port());
    ofAnswer.stopReading();
    ofAnswer.send(getRequest("/api/key-lists"));
    QCOMPARE(ofRequest.reply().status, 400);
    // This side of the connection is all that is left of it.
    WAIT_FOR_EQUAL(ProcessFigures::ownDescriptors(), before + 1);
    ofAnswer.goOnReading();
    QVERIFY(ofAnswer.awaitEnd());
    QVERIFY(ofAnswer.received().startsWith("HTTP/1.1 200 OK\r\n"));
    QVERIFY(ofAnswer.received().size() < 8'000'000);
}

void ConnectionTest::aCrowdOfClientsKeepsNobodyWaiting()
{
    Clients clients;
    const auto attempt = [&] {
        clients = connectClients(manyClients);
        const bool isServed = isServing();
        // The oldest ones made room.
        return isServed && clients.front()->awaitEnd() && clients.back()->isConnected()
                   ? QString()
                   : QStringLiteral("The newest client is cut off.");
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
    const int left = int(std::count_if(clients.begin(), clients.end(),
                                       [](const auto& client) { return client->isConnected(); }));
    QVERIFY2(left <= maximumConnections, qPrintable(QString::number(left)));
}

void ConnectionTest::streamsOutlastACrowd()
{
    EventReader reader(port());
    const Clients clients = connectClients(manyClients);
    QVERIFY(isServing());
    addEntry(1);
    QVERIFY(reader.awaitEvents(2));
}

void ConnectionTest::clientsMayEndTheirSideFirst()
{
    const Clients clients = connectClients(someClients, getRequest("/api/device"));
    for (const auto& client : clients) {
        client->endSending();
    }
    for (const auto& client : clients) {
        QCOMPARE(client->reply().status, 200);
    }
}

void ConnectionTest::onlyTheFirstRequestIsAnswered()
{
    HttpClient client(port());
    client.send(getRequest("/api/device") + postRequest("/api/restart", "{\"model\":\"Orvane\"}"));
    QVERIFY(client.awaitEnd());
    QCOMPARE(client.received().count("HTTP/1.1 "), 1);
    QCOMPARE(session().model(), QStringLiteral("Pellit"));
}

void ConnectionTest::aClientThatGoesAwayLeavesNothing()
{
    QVERIFY(isServing());
    const int before = ProcessFigures::ownDescriptors();
    for (const QByteArray& bytes :
         {QByteArray(), QByteArray("GET / HT"), getRequest("/api/device"),
          postRequest("/api/steps", "tap Up").chopped(3), getRequest("/api/events")}) {
        connectClients(someClients, bytes);
        QVERIFY(isServing());
    }
    WAIT_FOR(ProcessFigures::ownDescriptors() <= before);
    QCOMPARE(EventReader(port()).reply().status, 200);
}

void ConnectionTest::whenThereAreNoMoreFilesClientsWait()
{
    const int before = ProcessFigures::ownDescriptors();
    QVERIFY(isServing());
    // The server's end of that connection makes no room later.
    WAIT_FOR(ProcessFigures::ownDescriptors() <= before);
    ScarceFiles files;
    files.spareOne();
    HttpClient client(port());
    client.send(getRequest("/api/device"));
    const std::clock_t begin = std::clock();
    QTest::qWait(waitMs);
    QCOMPARE(client.received(), QByteArray());
    // The server waits as well, instead of trying again and again.
    const auto usedMs = (std::clock() - begin) * 1000 / CLOCKS_PER_SEC;
    QVERIFY2(usedMs < waitMs / 5, qPrintable(QString::number(usedMs)));
    files.spareAll();
    QCOMPARE(client.reply().status, 200);
}

void ConnectionTest::stoppingEndsStreams()
{
    EventReader one(port());
    EventReader other(port());
    server().stop();
    QVERIFY(one.connection().awaitEnd());
    QVERIFY(other.connection().awaitEnd());
}

void ConnectionTest::stoppingEndsSilentClients()
{
    const Clients clients = connectClients(someClients);
    QVERIFY(isServing());
    server().stop();
    for (const auto& client : clients) {
        QVERIFY(client->awaitEnd());
    }
}

void ConnectionTest::aRequestUnderWayIsToldThatTheServerEnds()
{
    const auto attempt = [this] {
        begin();
        const QByteArray bytes = getRequest("/api/device");
        Clients clients = connectClients(someClients, bytes.left(20));
        bool isTold = isServing();
        // From here on nothing is done on this thread that could answer them.
        for (const auto& client : clients) {
            client->send(bytes.mid(20));
            client->flush();
        }
        server().stop();
        for (const auto& client : clients) {
            const HttpReply reply = client->reply();
            isTold = isTold && reply.status == 503 && reply.error() == QStringLiteral("The server ends.");
        }
        return isTold ? QString() : QStringLiteral("A client has another answer.");
    };
    QCOMPARE(Attempts::outcome(attempt), QString());
}

void ConnectionTest::theSessionMayEndAfterTheServer()
{
    for (int round = 0; round < 20; ++round) {
        begin();
        const Clients clients = connectClients(5, getRequest("/api/events"));
        QTest::qWait(round);
    }
    QVERIFY(isServing());
}

QTEST_GUILESS_MAIN(ConnectionTest)
#include "ConnectionTest.moc"

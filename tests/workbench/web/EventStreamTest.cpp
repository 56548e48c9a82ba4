// SPDX-License-Identifier: MIT
#include "workbench/web/EventStream.h"
#include "tests/support/Waiting.h"
#include "tests/workbench/web/WebTest.h"
#include "workbench/web/SessionJson.h"

#include <QtTest>

#include <numeric>

namespace {

constexpr int maximumStreams = 10;
// With some of these a client that does not read has fallen too far behind for any buffer of the system.
constexpr int largeEntry = 256 * 1024;
constexpr int manyLargeEntries = 80;

QVector<int> numbers(int first, int last)
{
    QVector<int> result(last - first + 1);
    std::iota(result.begin(), result.end(), first);
    return result;
}

} // namespace

/// What the clients of the event stream get to know.
class EventStreamTest : public WebTest
{
    Q_OBJECT

private Q_SLOTS:
    void itBeginsWithASnapshot();
    void entriesFollow();
    void nothingIsCompressed();
    void allClientsSeeTheSame();
    void aBurstOfEntriesComesWhole();
    void theEleventhStreamIsRefused();
    void aStreamThatEndsMakesRoom();
    void aReaderThatHasGoneIsNoticed_data();
    void aReaderThatHasGoneIsNoticed();
    void aClientThatStopsReadingIsDropped();
    void aClientThatStopsReadingHoldsNobodyUp();
    void soManyEntriesWaitForAClient();
    void soManyBytesWaitForAClient();
    void aQuietStreamStays();

private:
    bool knowsClient(int client) const;
    std::unique_ptr<EventReader> openStalled();
};

bool EventStreamTest::knowsClient(int client) const
{
    return !post("/api/steps", {}, "X-Client: " + QByteArray::number(client) + "\r\n")
                .error()
                .startsWith(QStringLiteral("There is no event stream"));
}

std::unique_ptr<EventReader> EventStreamTest::openStalled()
{
    auto stalled = std::make_unique<EventReader>(port());
    stalled->connection().stopReading();
    return stalled;
}

void EventStreamTest::itBeginsWithASnapshot()
{
    addEntry(1);
    addEntry(2, 3);
    EventReader reader(port());
    QCOMPARE(reader.reply().headers.value("content-type"), QByteArray("text/event-stream"));
    QCOMPARE(reader.reply().headers.value("cache-control"), QByteArray("no-store"));
    const EventReader::Event snapshot = reader.events().value(0);
    QCOMPARE(snapshot.name, QByteArray("snapshot"));
    QCOMPARE(snapshot.data.value(QStringLiteral("client")).toInt(), 1);
    QCOMPARE(snapshot.data.value(QStringLiteral("device")).toObject(), SessionJson::description(session()));
    QCOMPARE(snapshot.data.value(QStringLiteral("history")).toArray(),
             QJsonArray({QJsonObject({{"at", 0}, {"id", 1}, {"text", ""}, {"type", "log"}}),
                         QJsonObject({{"at", 0}, {"id", 2}, {"text", "xxx"}, {"type", "log"}})}));
}

void EventStreamTest::entriesFollow()
{
    EventReader reader(port());
    addEntry(7, 3);
    QVERIFY(reader.awaitEvents(2));
    const EventReader::Event entry = reader.events().value(1);
    QCOMPARE(entry.name, QByteArray("entry"));
    QCOMPARE(entry.id, QByteArray("7"));
    QCOMPARE(entry.data.value(QStringLiteral("text")).toString(), QStringLiteral("xxx"));
}

void EventStreamTest::nothingIsCompressed()
{
    HttpClient client(port());
    client.send(getRequest("/api/events", "Accept-Encoding: gzip, br\r\n"));
    WAIT_FOR(client.received().contains("event: snapshot"));
    QVERIFY(!client.received().contains("Content-Encoding"));
}

void EventStreamTest::allClientsSeeTheSame()
{
    EventReader one(port());
    EventReader other(port());
    QVERIFY(one.client() != other.client());
    for (int id = 1; id <= 20; ++id) {
        addEntry(id);
    }
    QVERIFY(one.awaitEvents(21) && other.awaitEvents(21));
    QCOMPARE(one.entryIds(), numbers(1, 20));
    QCOMPARE(other.entryIds(), numbers(1, 20));
}

void EventStreamTest::aBurstOfEntriesComesWhole()
{
    EventReader reader(port());
    for (int id = 1; id <= 1900; ++id) {
        addEntry(id);
    }
    QVERIFY(reader.awaitEvents(1901));
    QCOMPARE(reader.entryIds(), numbers(1, 1900));
}

void EventStreamTest::theEleventhStreamIsRefused()
{
    std::vector<std::unique_ptr<EventReader>> readers;
    for (int reader = 1; reader <= maximumStreams; ++reader) {
        readers.push_back(std::make_unique<EventReader>(port()));
        QCOMPARE(readers.back()->client(), reader);
    }
    const HttpReply reply = get("/api/events");
    QCOMPARE(reply.status, 503);
    QCOMPARE(reply.error(), QStringLiteral("There are too many event streams."));
    addEntry(1);
    for (const auto& reader : readers) {
        QVERIFY(reader->awaitEvents(2));
    }
}

void EventStreamTest::aStreamThatEndsMakesRoom()
{
    std::vector<std::unique_ptr<EventReader>> readers;
    for (int reader = 1; reader <= maximumStreams; ++reader) {
        readers.push_back(std::make_unique<EventReader>(port()));
    }
    readers.front()->connection().disconnect();
    WAIT_FOR(!knowsClient(1));
    EventReader next(port());
    QCOMPARE(next.client(), maximumStreams + 1);
}

void EventStreamTest::aReaderThatHasGoneIsNoticed_data()
{
    QTest::addColumn<bool>("goesWhole");
    QTest::newRow("both sides") << true;
    QTest::newRow("the sending side") << false;
}

void EventStreamTest::aReaderThatHasGoneIsNoticed()
{
    QFETCH(bool, goesWhole);
    EventReader reader(port());
    EventReader other(port());
    if (goesWhole) {
        reader.connection().disconnect();
    } else {
        reader.connection().endSending();
    }
    // Without an event, and before the first comment.
    const auto hasComment = [&] { return other.connection().received().contains("\r\n:\n\n\r\n"); };
    WAIT_FOR(!knowsClient(1) || hasComment());
    QVERIFY(!hasComment());
    QVERIFY(knowsClient(2));
}

void EventStreamTest::aClientThatStopsReadingIsDropped()
{
    const std::unique_ptr<EventReader> stalled = openStalled();
    QVERIFY(knowsClient(1));
    for (int id = 1; id <= manyLargeEntries; ++id) {
        addEntry(id, largeEntry);
    }
    WAIT_FOR(!knowsClient(1));
    stalled->connection().goOnReading();
    QVERIFY(stalled->connection().awaitEnd());
    const QVector<int> ids = stalled->entryIds();
    QVERIFY(ids.size() < manyLargeEntries);
    QCOMPARE(ids, numbers(1, ids.size()));
}

void EventStreamTest::aClientThatStopsReadingHoldsNobodyUp()
{
    const std::unique_ptr<EventReader> stalled = openStalled();
    EventReader reader(port());
    for (int id = 1; id <= manyLargeEntries; ++id) {
        addEntry(id, largeEntry);
        QVERIFY(reader.awaitEvents(1 + id));
    }
    QCOMPARE(reader.entryIds(), numbers(1, manyLargeEntries));
    WAIT_FOR(!knowsClient(1));
    QVERIFY(knowsClient(2));
}

void EventStreamTest::soManyEntriesWaitForAClient()
{
    EventStream stream("event: snapshot\n\n");
    for (int entry = 1; entry <= 2000; ++entry) {
        QVERIFY(stream.add("event: entry\n\n"));
    }
    QVERIFY(!stream.add("event: entry\n\n"));
    // The stream is over, even if the client reads now.
    QVERIFY(!stream.add("event: entry\n\n"));
}

void EventStreamTest::soManyBytesWaitForAClient()
{
    const QByteArray mebibyte(1024 * 1024, 'x');
    EventStream stream(mebibyte.repeated(10));
    for (int entry = 1; entry <= 4; ++entry) {
        QVERIFY(stream.add(mebibyte));
    }
    QVERIFY(!stream.add("x"));
}

void EventStreamTest::aQuietStreamStays()
{
    EventReader reader(port());
    // After 15 s without an entry a comment comes.
    WAIT_FOR(reader.connection().received().contains("\r\n:\n\n\r\n"));
    addEntry(1);
    QVERIFY(reader.awaitEvents(2));
}

QTEST_GUILESS_MAIN(EventStreamTest)
#include "EventStreamTest.moc"

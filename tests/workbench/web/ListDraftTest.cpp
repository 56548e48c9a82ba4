// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/web/WebTest.h"
#include "workbench/web/ListSearches.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

#include <memory>

namespace {

constexpr int mebibyte = 1024 * 1024;
const QString combinations = QStringLiteral("modifierKeyList.json");

QByteArray bodyWith(const QString& file, const QByteArray& text)
{
    const QJsonObject lists{{file, QString::fromUtf8(text)}};
    return QJsonDocument(QJsonObject{{"keyLists", lists}}).toJson(QJsonDocument::Compact);
}

QByteArray pair(const QByteArray& action, const QByteArray& keys)
{
    return R"({ "ModifierKeys": [{ "keys": [)" + keys + R"(], "eAction": ")" + action +
           R"(", "receiverService": "UserMenu", "validOnState": "Idle" }] })";
}

QStringList idsIn(const HttpReply& reply)
{
    QStringList ids;
    for (const QJsonValue& finding : reply.json().value("findings").toArray()) {
        ids.append(finding.toObject().value("id").toString());
    }
    return ids;
}

} // namespace

/// Key lists that are checked and compared without a restart.
class ListDraftTest : public WebTest
{
    Q_OBJECT

private Q_SLOTS:
    void aDraftIsCheckedWithoutARestart();
    void aDraftWithTheInstalledListsHasNoFindings();
    void aDraftIsComparedWithTheListsInUse();
    void anUnchangedDraftChangesNothing();
    void strangeListsAreAnswered_data();
    void strangeListsAreAnswered();
    void onlySoManySearchesWait();
    void theServerEndsDuringSearches();
};

void ListDraftTest::aDraftIsCheckedWithoutARestart()
{
    const QJsonObject before = get("/api/key-lists").json();
    const HttpReply reply = post("/api/findings", bodyWith(combinations, pair("A", R"("Help", "Fed")")));
    QCOMPARE(reply.status, 200);
    QVERIFY2(idsIn(reply).contains("unknown-key"), reply.body.constData());
    const QJsonObject first = reply.json().value("findings").toArray().first().toObject();
    QCOMPARE(first.value("file").toString(), combinations);
    QCOMPARE(first.value("column").toInt(), 39);
    QCOMPARE(get("/api/key-lists").json(), before);
    QVERIFY(session().status() == Session::Status::Ended); // a restart would start it
    QCOMPARE(idsIn(get("/api/findings")), QStringList());
}

/// Each of their findings is intended.
void ListDraftTest::aDraftWithTheInstalledListsHasNoFindings()
{
    for (const char* body : {"", "{}", R"({"keyLists": null})"}) {
        QCOMPARE(post("/api/findings", body).status, 200);
        QCOMPARE(idsIn(post("/api/findings", body)), QStringList());
    }
}

void ListDraftTest::aDraftIsComparedWithTheListsInUse()
{
    options.keyLists.insert(combinations, pair("A", R"("Help", "Feed")"));
    begin();
    const HttpReply reply = post("/api/diff", bodyWith(combinations, pair("B", R"("Help", "Feed")")));
    QCOMPARE(reply.status, 200);
    const QJsonArray differences = reply.json().value("differences").toArray();
    QCOMPARE(differences.size(), 1);
    const QJsonArray lines = differences.first().toObject().value("lines").toArray();
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).toString().startsWith("Idle: "), reply.body.constData());
    QVERIFY2(lines.at(1).toString().endsWith("because Feed up completes A  [modifierKeyList.json:1]"),
             reply.body.constData());
    QVERIFY2(lines.at(2).toString().endsWith("because Feed up completes B  [modifierKeyList.json:1]"),
             reply.body.constData());
    QVERIFY(reply.json().value("conclusion").toString().endsWith(" steps."));
    QCOMPARE(reply.json().value("leftOut").toInt(), 0);
}

void ListDraftTest::anUnchangedDraftChangesNothing()
{
    const QJsonObject answer = post("/api/diff", "{}").json();
    QCOMPARE(answer.value("differences").toArray().size(), 0);
    QVERIFY2(answer.value("conclusion").toString().startsWith("No difference: proved, "),
             qPrintable(answer.value("conclusion").toString()));
}

void ListDraftTest::strangeListsAreAnswered_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("status");
    const auto rows = [](const QByteArray& row, int count) {
        return "{ \"LongKeys\": [" + (row + ',').repeated(count) + row + "] }";
    };
    QTest::newRow("empty rows") << rows("{}", 18'000) << 200;
    QTest::newRow("too many empty rows") << rows("{}", 300'000) << 413;
    QTest::newRow("numbers") << rows("5", 190'000) << 200;
    QTest::newRow("too many numbers") << rows("5", 500'000) << 413;
    QTest::newRow("long presses of one key")
        << rows(
               R"({"keys":["Up"],"eAction":"A","receiverService":"UserMenu","timeout":1,"validOnState":"Idle"})",
               9'000)
        << 200;
    QTest::newRow("deep") << QByteArray("[").repeated(500'000) << 200;
    QTest::newRow("deep and whole") << "{ \"LongKeys\": " + QByteArray(2000, '[') + QByteArray(2000, ']') +
                                           '}'
                                    << 200;
    QTest::newRow("many keys") << R"({ "LongKeys": [{ "keys": [)" + QByteArray("\"Up\", ").repeated(80'000) +
                                      R"("Up"], "timeout": 1, "validOnState": "Idle" }] })"
                               << 200;
    QTest::newRow("many states") << R"({ "LongKeys": [{ "keys": ["Up"], "eAction": "A", "timeout": 1,
                                         "validOnState": ")" +
                                        QByteArray("Idle|").repeated(100'000) + R"(" }] })"
                                 << 200;
    QTest::newRow("a long name") << R"({ "LongKeys": [{ "keys": ["Up"], "eAction": ")" +
                                        QByteArray(500'000, 'a') +
                                        R"(", "timeout": 1, "validOnState": "Idle" }] })"
                                 << 200;
    QTest::newRow("no text") << QByteArray("\0\1\2\x7f", 4).repeated(40'000) << 200;
    QTest::newRow("nothing") << QByteArray() << 200;
}

void ListDraftTest::strangeListsAreAnswered()
{
    QFETCH(QByteArray, text);
    QFETCH(int, status);
    const QByteArray body = bodyWith("longKeyList.json", text);
    QVERIFY2(body.size() <= mebibyte, QByteArray::number(body.size()));
    for (const char* path : {"/api/findings", "/api/diff"}) {
        if (path == QByteArray("/api/diff") && status == 200) {
            continue; // it takes seconds, as with other lists
        }
        const HttpReply reply = post(path, body);
        QCOMPARE(reply.status, status);
        QVERIFY(reply.json().contains(status == 200 ? "leftOut" : "error"));
        QVERIFY2(reply.body.size() < 8 * mebibyte, QByteArray::number(reply.body.size()));
    }
    QVERIFY(isServing());
}

/// The first search takes longer than it takes to send the others.
void ListDraftTest::onlySoManySearchesWait()
{
    std::vector<std::unique_ptr<HttpClient>> clients;
    for (int number = 0; number < ListSearches::maxWaiting + 5; ++number) {
        clients.push_back(std::make_unique<HttpClient>(port()));
        clients.back()->send(postRequest(number == 0 ? "/api/diff" : "/api/findings", "{}"));
    }
    QVector<int> statuses;
    for (const auto& client : clients) {
        statuses.append(client->reply().status);
    }
    QCOMPARE(statuses.count(503), 4);
    QCOMPARE(statuses.count(200), ListSearches::maxWaiting + 1);
    QCOMPARE(post("/api/findings", "{}").status, 200);
}

/// Also when the clients have gone.
void ListDraftTest::theServerEndsDuringSearches()
{
    for (int number = 0; number < ListSearches::maxWaiting; ++number) {
        HttpClient client(port());
        client.send(postRequest(number == 0 ? "/api/diff" : "/api/findings", "{}"));
        client.flush();
        QVERIFY(isServing());
        client.disconnect();
    }
    begin();
    QVERIFY(isServing());
}

QTEST_GUILESS_MAIN(ListDraftTest)
#include "ListDraftTest.moc"

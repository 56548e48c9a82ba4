// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"

namespace {

const QString shortcutFile = QStringLiteral("shortcutKeyList.json");
const QByteArray undefinedRow =
    R"({"ShortcutKeys": [{"keys": ["Help", "Up"], "eAction": "Void", "receiverService": "Undefined", "validOnState": "Idle"}]})";

QJsonObject withoutTime(QJsonObject entry)
{
    entry.remove("id");
    entry.remove("at");
    return entry;
}

} // namespace

class SessionEntriesTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void entriesAreNumberedConsecutively();
    void timesCountFromTheStartOfTheDevice();
    void keysAreReported();
    void recordsAreReported();
    void commandsAndAnswersAreReported();
    void aCommandThatTheBusRefusesIsAnswered();
    void consoleLinesAndTheLogAreReported();
    void headingsAndStatesAreReported();
    void speechIsReportedAsText();
    void announcementsAreReported();
    void aRefusedActionIsNamed();
    void aRefusedActionIsNamedAfterOtherKeys();
    void anActionWithoutReceiverIsRefused();
    void anActionForAnEmptyStateIsRefused();
    void aKeyWhileStartingUpIsRefused();
    void startAndEndOfAKeyboardTestAreReported();
};

void SessionEntriesTest::entriesAreNumberedConsecutively()
{
    QVERIFY(launch());
    QCOMPARE(execute("tap Menu"), QString());
    QVERIFY(awaitEntry("announcement", "action", "SingleKey"));
    QCOMPARE(
        withoutTime(entries().first()),
        QJsonObject({{"type", "device"}, {"status", "starting"}, {"model", "Pellit"}, {"state", "Idle"}}));
    for (int i = 0; i < entries().size(); ++i) {
        QCOMPARE(entries().at(i).value("id").toInt(), i + 1);
    }
}

void SessionEntriesTest::timesCountFromTheStartOfTheDevice()
{
    QVERIFY(launch());
    QTest::qWait(100);
    QVERIFY(execute("press Up").isEmpty());
    QVERIFY(entries("key").first().value("at").toInt() >= 100);
    QVERIFY(session().restart({}).isEmpty());
    QVERIFY(entries("device").last().value("at").toInt() < entries("key").first().value("at").toInt());
}

void SessionEntriesTest::keysAreReported()
{
    QVERIFY(launch());
    QCOMPARE(execute("device 1; press Up"), QString());
    WAIT_FOR(keys().size() >= 3);
    QCOMPARE(execute("device 1; release Up; press Ok; press Ok; release Ok; release Ok"), QString());
    WAIT_FOR(keys().contains("1 Ok 0"));
    QCOMPARE(keys().mid(0, 3), QStringList({"1 Up 1", "1 Up 2", "1 Up 2"}));
    QCOMPARE(keys().mid(keys().size() - 3), QStringList({"1 Up 0", "1 Ok 1", "1 Ok 0"}));
}

void SessionEntriesTest::recordsAreReported()
{
    QVERIFY(launch());
    QCOMPARE(execute("record 1 139 5; device 1; record 4 4 -7; record 1 139 1; record 1 30 1"), QString());
    QCOMPARE(keys(), QStringList("1 Menu 1"));
    const QVector<QJsonObject> records = entries("record");
    QCOMPARE(records.size(), 3);
    QCOMPARE(
        withoutTime(records.first()),
        QJsonObject({{"type", "record"}, {"device", 0}, {"recordType", 1}, {"code", 139}, {"value", 5}}));
    QCOMPARE(withoutTime(records.at(1)),
             QJsonObject({{"type", "record"}, {"device", 1}, {"recordType", 4}, {"code", 4}, {"value", -7}}));
}

void SessionEntriesTest::commandsAndAnswersAreReported()
{
    QVERIFY(launch());
    QCOMPARE(execute("command GetLastKey as WwwApi"), QString());
    QCOMPARE(members("command", "text"), QStringList("GetLastKey as WwwApi"));
    QVERIFY(awaitEntry("answer", "text", "answer errorId=Undefined key=0 resultId=Success"));
    QCOMPARE(entries("answer").first().value("response").toObject(),
             QJsonObject({{"errorId", "Undefined"}, {"key", 0}, {"resultId", "Success"}}));
}

void SessionEntriesTest::aCommandThatTheBusRefusesIsAnswered()
{
    options.namePolicy = DeviceOptions::NamePolicy::DenyOwnership;
    QVERIFY(launch());
    QCOMPARE(execute("command GetLastKey"), QString());
    WAIT_FOR_EQUAL(entries("answer").size(), 1);
    const QJsonObject answer = entries("answer").first();
    QVERIFY(answer.value("text").toString().startsWith("answer busError=org.freedesktop.DBus.Error."));
    QVERIFY(!answer.value("response").toObject().value("message").toString().isEmpty());
}

void SessionEntriesTest::consoleLinesAndTheLogAreReported()
{
    QVERIFY(launch());
    QCOMPARE(execute("console C 4; wait 0"), QString());
    QCOMPARE(members("console", "text"), QStringList("C 4"));
    QVERIFY(awaitEntry("log", "text", "Process command response"));
}

void SessionEntriesTest::headingsAndStatesAreReported()
{
    QVERIFY(launch());
    QCOMPARE(execute("## A change; state Print"), QString());
    QCOMPARE(members("heading", "text"), QStringList("A change"));
    QCOMPARE(members("state", "state"), QStringList("Print"));
}

void SessionEntriesTest::speechIsReportedAsText()
{
    QVERIFY(launch());
    QCOMPARE(execute("tap Chs"), QString());
    QVERIFY(awaitEntry("speech", "text", "Character set"));
    QVERIFY(entries("speech").first().value("observation").toString().startsWith("speak EmbosserCore "));
}

void SessionEntriesTest::announcementsAreReported()
{
    QVERIFY(launch());
    QCOMPARE(execute("tap Help Feed"), QString());
    QVERIFY(awaitEntry("announcement", "action", "PaperStatus"));
    QCOMPARE(withoutTime(entries("announcement").first()),
             QJsonObject({{"type", "announcement"},
                          {"action", "PaperStatus"},
                          {"receiver", "PrintManager"},
                          {"sender", ""},
                          {"keys", QJsonArray({"Help", "Feed"})},
                          {"observation", "announce PaperStatus PrintManager - Help Feed"}}));
}

void SessionEntriesTest::aRefusedActionIsNamed()
{
    QVERIFY(launch());
    QCOMPARE(execute("press Feed; tap Ok; release Feed"), QString());
    QVERIFY(awaitEntry("refusal", "action", "LoadPaper"));
    const QJsonObject refusal = entries("refusal").first();
    QCOMPARE(refusal.value("expected").toString(), QStringLiteral("PrintOff"));
    QCOMPARE(refusal.value("current").toString(), QStringLiteral("Idle"));
    QVERIFY(members("log", "text").contains(refusal.value("reason").toString()));
}

void SessionEntriesTest::aRefusedActionIsNamedAfterOtherKeys()
{
    QVERIFY(launch());
    QCOMPARE(execute("hold Feed 300; wait 100; press Feed; wait 300; tap Ok; release Feed"), QString());
    WAIT_FOR_EQUAL(entries("refusal").size(), 1);
    QCOMPARE(entries("refusal").first().value("action").toString(), QStringLiteral("LoadPaper"));
}

void SessionEntriesTest::anActionWithoutReceiverIsRefused()
{
    options.keyLists.insert(shortcutFile, undefinedRow);
    QVERIFY(launch());
    QCOMPARE(execute("press Help; tap Up; release Help"), QString());
    WAIT_FOR_EQUAL(entries("refusal").size(), 1);
    QCOMPARE(
        withoutTime(entries("refusal").first()),
        QJsonObject({{"type", "refusal"},
                     {"reason", "The receiver of the action is \"Undefined\", so no service receives it."},
                     {"action", "Void"}}));
}

void SessionEntriesTest::anActionForAnEmptyStateIsRefused()
{
    options.keyLists.insert(
        shortcutFile,
        QByteArray(undefinedRow).replace(R"("Undefined")", R"("UserMenu")").replace(R"("Idle")", R"("")"));
    QVERIFY(launch());
    QCOMPARE(execute("press Help; wait 50; tap Up; release Help"), QString());
    WAIT_FOR_EQUAL(entries("refusal").size(), 1);
    const QJsonObject refusal = entries("refusal").first();
    QCOMPARE(refusal.value("expected"), QJsonValue(""));
    QCOMPARE(refusal.value("current").toString(), QStringLiteral("Idle"));
    QCOMPARE(refusal.value("action").toString(), QStringLiteral("Void"));
}

void SessionEntriesTest::aKeyWhileStartingUpIsRefused()
{
    options.state = ls::StateId::Startup;
    QVERIFY(launch());
    QCOMPARE(execute("tap Up"), QString());
    WAIT_FOR_EQUAL(entries("refusal").size(), 1);
    QCOMPARE(
        withoutTime(entries("refusal").first()),
        QJsonObject({{"type", "refusal"}, {"reason", "The device is starting up."}, {"current", "Startup"}}));
    QCOMPARE(entries("cancel").size(), 1);
}

void SessionEntriesTest::startAndEndOfAKeyboardTestAreReported()
{
    options.state = ls::StateId::Error;
    QVERIFY(launch());
    QCOMPARE(execute("command StartTestMode"), QString());
    QVERIFY(awaitEntry("test", "running", "true"));
    QVERIFY(session().isTesting());
    QCOMPARE(execute("tap Up; wait 50; tap Ten"), QString());
    QVERIFY(awaitEntry("test", "running", "false"));
    QVERIFY(!session().isTesting());
    QCOMPARE(members("announcement", "observation"),
             QStringList("announce SingleKey ErrorHandler ServiceTool Ok"));
}

QTEST_GUILESS_MAIN(SessionEntriesTest)
#include "SessionEntriesTest.moc"

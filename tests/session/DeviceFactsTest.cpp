// SPDX-License-Identifier: MIT
#include "simulator/session/DeviceFacts.h"

#include <QtTest>

namespace {

QJsonObject key(int device, const QString& name, int value)
{
    return {{"type", "key"}, {"device", device}, {"key", name}, {"value", value}};
}

QJsonObject command(const QString& text)
{
    return {{"type", "command"}, {"text", text}};
}

QJsonObject answer(const QString& result)
{
    return {{"type", "answer"}, {"response", QJsonObject({{"resultId", result}})}};
}

QJsonObject single(const QString& name, const QString& receiver)
{
    return {{"type", "announcement"},
            {"action", "SingleKey"},
            {"keys", QJsonArray({name})},
            {"receiver", receiver}};
}

const QJsonObject start = command("StartTestMode as ServiceTool");
const QJsonObject success = answer("Success");

} // namespace

class DeviceFactsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysAreHeldUntilTheyAreReleased();
    void aNewDeviceHoldsNothingAndTestsNothing();
    void aTestRunsFromItsAnswerToItsOk_data();
    void aTestRunsFromItsAnswerToItsOk();
};

void DeviceFactsTest::keysAreHeldUntilTheyAreReleased()
{
    DeviceFacts facts;
    for (const QJsonObject& entry :
         {key(1, "Up", 1), key(0, "Up", 1), key(0, "Help", 1), key(0, "Help", 2), key(0, "Up", 0)}) {
        facts.note(entry);
    }
    QCOMPARE(facts.toJson().value("held").toArray(),
             QJsonArray({QJsonObject({{"device", 0}, {"key", "Help"}}),
                         QJsonObject({{"device", 1}, {"key", "Up"}})}));
}

void DeviceFactsTest::aNewDeviceHoldsNothingAndTestsNothing()
{
    DeviceFacts facts;
    for (const QJsonObject& entry :
         {key(1, "Up", 1), start, success, QJsonObject({{"type", "device"}, {"status", "ended"}})}) {
        facts.note(entry);
    }
    QCOMPARE(facts.toJson(), QJsonObject({{"held", QJsonArray()}, {"testing", false}}));
}

void DeviceFactsTest::aTestRunsFromItsAnswerToItsOk_data()
{
    QTest::addColumn<QVector<QJsonObject>>("entries");
    QTest::addColumn<bool>("runs");
    const auto row = [](const char* name, const QVector<QJsonObject>& entries, bool runs) {
        QTest::newRow(name) << entries << runs;
    };
    row("not answered yet", {start}, false);
    row("answered", {start, success}, true);
    row("refused", {start, answer("Failure")}, false);
    row("another command was answered", {command("GetLastKey as WwwApi"), start, success}, false);
    row("both were answered", {command("GetLastKey as WwwApi"), start, success, success}, true);
    row("its Ok", {start, success, single("Ok", "ErrorHandler")}, false);
    row("the single Ok of Idle", {start, success, single("Ok", "UserMenu")}, true);
    row("another key", {start, success, single("Up", "PrintManager")}, true);
}

void DeviceFactsTest::aTestRunsFromItsAnswerToItsOk()
{
    QFETCH(QVector<QJsonObject>, entries);
    DeviceFacts facts;
    for (const QJsonObject& entry : qAsConst(entries)) {
        facts.note(entry);
    }
    QTEST(facts.isTesting(), "runs");
    QTEST(facts.toJson().value("testing").toBool(), "runs");
}

QTEST_GUILESS_MAIN(DeviceFactsTest)
#include "DeviceFactsTest.moc"

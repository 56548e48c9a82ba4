// SPDX-License-Identifier: MIT
#include "simulator/script/ObservationText.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

namespace {

QVariantMap keyboardChange(const QVariantMap& more = {})
{
    QVariantMap map{{ls::notificationIdKey, "KeyboardChange"},
                    {ls::actionIdKey, "SingleKey"},
                    {ls::senderIdKey, "KeyboardHandler"},
                    {ls::receiverIdKey, "UserMenu"}};
    for (auto entry = more.begin(); entry != more.end(); ++entry) {
        map.insert(entry.key(), entry.value());
    }
    return map;
}

} // namespace

class ObservationTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void announcements_data();
    void announcements();
    void speeches_data();
    void speeches();
    void answers_data();
    void answers();
    void trailingBlanksOfLogLinesAreRemoved();
    void logLinesAreRecognised();
};

void ObservationTextTest::announcements_data()
{
    QTest::addColumn<QVariantMap>("notification");
    QTest::addColumn<QString>("text");
    QTest::newRow("one key") << keyboardChange({{ls::firstKeyKey, "Up"}})
                             << "announce SingleKey UserMenu KeyboardHandler Up";
    QTest::newRow("two keys") << keyboardChange({{ls::firstKeyKey, "Up"}, {ls::secondKeyKey, "Ok"}})
                              << "announce SingleKey UserMenu KeyboardHandler Up Ok";
    QTest::newRow("no key") << keyboardChange() << "announce SingleKey UserMenu KeyboardHandler";
    QTest::newRow("empty sender") << keyboardChange({{ls::senderIdKey, ""}, {ls::firstKeyKey, "Up"}})
                                  << "announce SingleKey UserMenu - Up";
    QTest::newRow("action of two words") << keyboardChange({{ls::actionIdKey, "two words"}})
                                         << "announce \"two words\" UserMenu KeyboardHandler";
    QTest::newRow("action written like an empty one")
        << keyboardChange({{ls::actionIdKey, "-"}}) << "announce \"-\" UserMenu KeyboardHandler";
    QTest::newRow("an additional field")
        << keyboardChange({{"odd", 1}})
        << R"(announce {"actionId":"SingleKey","notificationId":"KeyboardChange","odd":1,"receiverId":"UserMenu",)"
           R"("senderId":"KeyboardHandler"})";
    QTest::newRow("another notification") << QVariantMap{{ls::notificationIdKey, "StateChange"}}
                                          << R"(announce {"notificationId":"StateChange"})";
    QTest::newRow("nothing") << QVariantMap() << "announce {}";
}

void ObservationTextTest::announcements()
{
    QFETCH(QVariantMap, notification);
    QTEST(ObservationText::announcement(notification), "text");
}

void ObservationTextTest::speeches_data()
{
    QTest::addColumn<QVariantMap>("request");
    QTest::addColumn<QString>("text");
    QTest::newRow("core") << QVariantMap{{"serviceId", 0}, {"sentenceId", 24}} << "speak EmbosserCore 24";
    QTest::newRow("error") << QVariantMap{{"serviceId", 1}, {"sentenceId", 69}} << "speak EmbosserError 69";
    QTest::newRow("menu") << QVariantMap{{"serviceId", 2}, {"sentenceId", 487}} << "speak EmbosserMenu 487";
    QTest::newRow("arguments") << QVariantMap{{"serviceId", 0},
                                              {"sentenceId", 1},
                                              {"arguments", QStringList{"a b"}}}
                               << R"(speak EmbosserCore 1 ["a b"])";
    QTest::newRow("unknown file") << QVariantMap{{"serviceId", 3}, {"sentenceId", 1}}
                                  << R"(speak {"sentenceId":1,"serviceId":3})";
    QTest::newRow("no file") << QVariantMap{{"sentenceId", 1}} << R"(speak {"sentenceId":1})";
    QTest::newRow("no sentence") << QVariantMap{{"serviceId", 0}} << R"(speak {"serviceId":0})";
}

void ObservationTextTest::speeches()
{
    QFETCH(QVariantMap, request);
    QTEST(ObservationText::speech(request), "text");
}

void ObservationTextTest::answers_data()
{
    QTest::addColumn<QVariantMap>("response");
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << QVariantMap{{"resultId", "Success"}, {"errorId", "Undefined"}}
                           << "answer errorId=Undefined resultId=Success";
    QTest::newRow("a number") << QVariantMap{{"resultId", 3}} << "answer resultId=3";
    QTest::newRow("an empty text") << QVariantMap{{"errorId", ""}} << "answer errorId=-";
    QTest::newRow("a map and a list")
        << QVariantMap{{"map", QVariantMap{{"b", 1}, {"a", QVariantList{1, "x"}}}}}
        << R"(answer map={"a":[1,"x"],"b":1})";
    QTest::newRow("nothing") << QVariantMap() << "answer";
}

void ObservationTextTest::answers()
{
    QFETCH(QVariantMap, response);
    QTEST(ObservationText::answer(response), "text");
}

void ObservationTextTest::trailingBlanksOfLogLinesAreRemoved()
{
    QCOMPARE(ObservationText::logLine(QStringLiteral("  two  blanks \r")),
             QStringLiteral("log   two  blanks"));
}

void ObservationTextTest::logLinesAreRecognised()
{
    QVERIFY(ObservationText::isLogLine(ObservationText::logLine({})));
    QVERIFY(!ObservationText::isLogLine(ObservationText::cancellation()));
}

QTEST_APPLESS_MAIN(ObservationTextTest)
#include "ObservationTextTest.moc"

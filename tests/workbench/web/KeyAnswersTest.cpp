// SPDX-License-Identifier: MIT
#include "workbench/web/KeyAnswers.h"

#include "simulator/script/KeyListJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

namespace {

const QByteArray paperStatus =
    R"("task": {"kind": "combination", "keys": ["Help", "Feed"], "action": "PaperStatus",
                "receivers": ["PrintManager"]})";

KeyAnswers::Device device()
{
    return {KeyListJson::read(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER)), "Pellit"};
}

using Answer = HttpAnswer (*)(const KeyAnswers::Device& device, const KeyQuestion& question);

QJsonObject answer(Answer answerOf, const QByteArray& body, const QString& state = "Idle")
{
    HttpAnswer result;
    if (const auto question = KeyQuestion::read(body, state, &result)) {
        result = answerOf(device(), *question);
    }
    return QJsonDocument::fromJson(result.body).object();
}

} // namespace

/// Questions about keys, without a device.
class KeyAnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysAreDescribed();
    void theStateIsThatOfTheDeviceUnlessOneIsNamed();
    void keysAreExplained();
    void keysNearATimeAreExplainedAlone();
    void theSearchForCausesIsLimited();
    void keysAreJudged();
    void pausesDoNotCountAtOnesOwnPace();
    void faultyQuestionsAreRefused_data();
    void faultyQuestionsAreRefused();
    void faultsOfScriptsAreListed();
};

void KeyAnswersTest::keysAreDescribed()
{
    const QJsonObject what = answer(KeyAnswers::what, R"({"script": "tap Help\ntap Feed"})");
    QCOMPARE(what.value("text").toString(),
             QString("Help, then Feed: PaperStatus, to PrintManager, only in Idle."));
    QCOMPARE(what.value("forgottenAfter").toInt(), 1500);
    const QJsonObject announcement{{"at", 100},
                                   {"action", "PaperStatus"},
                                   {"receiver", "PrintManager"},
                                   {"keys", QJsonArray{"Help", "Feed"}},
                                   {"states", QJsonArray{"Idle"}}};
    QCOMPARE(what.value("announcements").toArray(), QJsonArray{announcement});
    QVERIFY(what.value("lines").toArray().contains(
        "   0.100  announces PaperStatus to PrintManager, with Help and Feed"));
}

void KeyAnswersTest::theStateIsThatOfTheDeviceUnlessOneIsNamed()
{
    const QByteArray script = R"("script": "hold Back 2300")";
    const QString announced = "Hold Back for 2.3 s: CancelJob, to PrintManager, only in Print and PrintOff";
    QVERIFY(
        answer(KeyAnswers::what, '{' + script + '}', "Print").value("text").toString().startsWith(announced));
    QVERIFY(answer(KeyAnswers::what, R"({"state": "Print", )" + script + '}')
                .value("text")
                .toString()
                .startsWith(announced));
    QVERIFY(!answer(KeyAnswers::what, '{' + script + '}').value("text").toString().startsWith(announced));
}

void KeyAnswersTest::keysAreExplained()
{
    const QJsonArray lines =
        answer(KeyAnswers::why, R"({"script": "press Feed\nwait 100\ntap Ok\nrelease Feed"})")
            .value("lines")
            .toArray();
    QVERIFY(lines.contains("   0.100  Ok down           completes LoadPaper  [shortcutKeyList.json:6]"));
    const QByteArray text = QJsonDocument(lines).toJson();
    QVERIFY2(text.contains("LoadPaper is valid in PrintOff, and the state was Idle"), text.constData());
}

void KeyAnswersTest::keysNearATimeAreExplainedAlone()
{
    const QByteArray script = R"("script": "tap Up\nwait 3000\ntap Down")";
    const auto text = [](const QJsonObject& why) { return QJsonDocument(why).toJson(); };
    QVERIFY(text(answer(KeyAnswers::why, '{' + script + '}')).contains("Up down"));
    const QByteArray near = text(answer(KeyAnswers::why, '{' + script + R"(, "at": 3060})"));
    QVERIFY2(near.contains("Down down") && !near.contains("Up down"), near.constData());
}

/// Each row is a cause, and trying one takes as long as all rows.
void KeyAnswersTest::theSearchForCausesIsLimited()
{
    const auto causes = [](int count) {
        QJsonArray rows;
        for (int i = 0; i < count; ++i) {
            rows.append(QJsonObject{{"keys", QJsonArray{"Help", "Feed"}},
                                    {"eAction", QString("A%1").arg(i)},
                                    {"receiverService", "UserMenu"},
                                    {"validOnState", "Idle"}});
        }
        const KeyAnswers::Device many{
            {{"modifierKeyList.json", QJsonDocument(QJsonObject{{"ModifierKeys", rows}}).toJson()}},
            "Pellit"};
        HttpAnswer unused;
        const auto question = KeyQuestion::read(R"({"script": "tap Help\ntap Feed"})", "Idle", &unused);
        return KeyAnswers::why(many, *question).body;
    };
    QVERIFY(causes(3).contains("row 3 of modifierKeyList.json, A2 was completed"));
    QVERIFY(causes(1000).contains("  not found."));
}

void KeyAnswersTest::keysAreJudged()
{
    const auto judged = [](const QByteArray& script) {
        return answer(KeyAnswers::judgement, R"({"script": ")" + script + R"(", )" + paperStatus + '}');
    };
    const QJsonObject right = judged("tap Help\\ntap Feed");
    QCOMPARE(right.value("right").toBool(), true);
    const QJsonObject wrong = judged("tap Help\\nwait 1650\\ntap Feed");
    QCOMPARE(wrong.value("right").toBool(true), false);
    QVERIFY2(wrong.value("text").toString().endsWith(
                 "PaperStatus is not completed: Feed was released 1.7 s after Help, and 1.5 s is the limit."),
             qPrintable(wrong.value("text").toString()));
    QCOMPARE(wrong.value("forgottenAfter").toInt(), 1500);
    QVERIFY(answer(KeyAnswers::judgement, R"({"script": "tap Help"})").contains("error"));
}

void KeyAnswersTest::pausesDoNotCountAtOnesOwnPace()
{
    const auto judged = [](const QByteArray& script) {
        return answer(KeyAnswers::judgement,
                      R"({"ownPace": true, "script": ")" + script + R"(", )" + paperStatus + '}');
    };
    QVERIFY(!judged("tap Help").contains("forgottenAfter"));
    const QJsonObject slow = judged("hold Help 4000\\nwait 60000\\ntap Feed");
    QCOMPARE(slow.value("right").toBool(), true);
    QCOMPARE(slow.value("forgottenAfter").toInt(-1), 0);
    // A wait of hours does not make the script too long.
    QCOMPARE(judged("tap Help\\nwait 9000000\\ntap Feed").value("right").toBool(), true);
}

void KeyAnswersTest::faultyQuestionsAreRefused_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("fault");
    const QByteArray many = QByteArray("tap Up\\n").repeated(51);
    QTest::newRow("not JSON") << QByteArray("{") << "The JSON is faulty in line 1, column 2";
    QTest::newRow("an array") << QByteArray("[]") << "not an object";
    QTest::newRow("nothing") << QByteArray() << "\"script\" is not a text";
    QTest::newRow("script") << QByteArray(R"({"script": 5})") << "\"script\" is not a text";
    QTest::newRow("state") << QByteArray(R"({"script": "", "state": 5})") << "\"state\" is not a text";
    QTest::newRow("unknown state") << QByteArray(R"({"script": "", "state": "Dreaming"})") << "Dreaming";
    QTest::newRow("unknown key") << QByteArray(R"({"script": "tap Bell"})") << "Unknown key \"Bell\"";
    QTest::newRow("console") << QByteArray(R"({"script": "console HELP"})") << "does not know console lines";
    QTest::newRow("many steps") << R"({"script": ")" + many + R"("})"
                                << "more than 100 steps";
    QTest::newRow("long") << QByteArray(R"({"script": "tap Up\nwait 60000"})") << "longer than 60000 ms";
    QTest::newRow("at") << QByteArray(R"({"script": "", "at": -1})") << "\"at\" is not a time";
    QTest::newRow("at, far") << QByteArray(R"({"script": "", "at": 1e300})") << "\"at\" is not a time";
    QTest::newRow("task") << QByteArray(R"({"script": "", "task": {"kind": "single", "keys": []}})")
                          << "not an entry of the key card";
    QTest::newRow("kind") << QByteArray(R"({"script": "", "task": {"kind": "song", "keys": ["Up"],
                                            "action": "X", "receivers": ["UserMenu"]}})")
                          << "not an entry of the key card";
    QTest::newRow("pace") << QByteArray(R"({"script": "", "ownPace": "yes"})") << "neither true nor false";
    QTest::newRow("unknown member") << QByteArray(R"({"script": "", "model": "Orvane"})")
                                    << "The members of a question are";
}

void KeyAnswersTest::faultyQuestionsAreRefused()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, fault);
    HttpAnswer refusal;
    QVERIFY(!KeyQuestion::read(body, "Idle", &refusal));
    QCOMPARE(refusal.status, 400);
    QVERIFY2(refusal.body.contains(QString(fault).replace('"', "\\\"").toUtf8()), refusal.body.constData());
    QVERIFY(refusal.body.size() < 500);
}

void KeyAnswersTest::faultsOfScriptsAreListed()
{
    const QJsonArray faults =
        answer(KeyAnswers::what, R"({"script": "tap Up\ntap Bell"})").value("faults").toArray();
    QCOMPARE(faults.size(), 1);
    QCOMPARE(faults.first().toObject().value("line").toInt(), 2);
}

QTEST_GUILESS_MAIN(KeyAnswersTest)
#include "KeyAnswersTest.moc"

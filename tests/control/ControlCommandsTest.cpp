// SPDX-License-Identifier: MIT
#include "tests/control/ControlProgram.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

const QByteArray modifierList = R"({"ModifierKeys": [{"keys": ["Help", "Ok"], "eAction": "Both",)"
                                R"( "receiverService": "UserMenu", "validOnState": "Idle"}]})";
const QByteArray shortcutList =
    R"({"ShortcutKeys": [{"keys": ["Feed", "Up"], "eAction": "Chord",)"
    R"( "receiverService": "UserMenu", "validOnState": "Idle"}, {"keys": ["\u001b[2J"]}]})";
const QByteArray longList = R"({"LongKeys": [{"keys": ["Help"], "eAction": "Hold", "timeout": 2},)"
                            R"( {"keys": ["Menu"], "eAction": "Hold", "timeout": 3}]})";

const QString noBus = QStringLiteral("unix:path=/tmp/no-such-bus");

} // namespace

/// The verbs of keyboard-handlerctl that send commands, with the real daemon.
class ControlCommandsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void answersAreForPeople();
    void answersAreTheResponsesAsJson();
    void lastKeyIsNamed();
    void simulatedKeysArePressedAndReleased();
    void simulatedKeysHaveOneActionIfWanted();
    void senderIsServiceToolUnlessAnotherIsNamed();
    void listsOfKeysReachTheRecognisers();
    void keyboardTestIsBegunAndItsResultForgotten();
    void wrongLinesAreRefused_data();
    void wrongLinesAreRefused();
    void helpSaysWhatACommandChanges_data();
    void helpSaysWhatACommandChanges();
    void outputThatCannotBeWrittenIsReported();

private:
    ControlProgram program(const QString& line);
    QString outputOf(const QString& line);
};

void ControlCommandsTest::init()
{
    options.keyLists = {{"modifierKeyList.json", modifierList},
                        {"shortcutKeyList.json", shortcutList},
                        {"longKeyList.json", longList}};
}

ControlProgram ControlCommandsTest::program(const QString& line)
{
    return {device().bus().address(), line.split(' ')};
}

/// What the program prints if it succeeds; otherwise, its complaint.
QString ControlCommandsTest::outputOf(const QString& line)
{
    ControlProgram run = program(line);
    return QString::fromUtf8(run.status() == 0 ? run.out() : run.err());
}

void ControlCommandsTest::answersAreForPeople()
{
    QVERIFY(launch());
    QCOMPARE(outputOf("last-key"), QStringLiteral("no key yet (0)\n"));
    QCOMPARE(outputOf("times"), QStringLiteral("Help: 6 s, three times the time of the list\nMenu: 3 s\n"));
    QCOMPARE(outputOf("lists"), QStringLiteral("Help, then Ok: Both to UserMenu, in Idle\n"
                                               "Feed held, then Up: Chord to UserMenu, in Idle\n"
                                               "\\u001b[2J:  to , in \n"));
    QCOMPARE(outputOf("test result"), QStringLiteral("0 different keys were released in the test\n"));
    QCOMPARE(outputOf("simulate Up"), QString());
}

void ControlCommandsTest::answersAreTheResponsesAsJson()
{
    QVERIFY(launch());
    const QString success = R"({"errorId":"Undefined",%1"resultId":%2})"
                            "\n";
    const QString row = R"([{"eAction":"%1","keys":["%2","%3"],"receiverService":"UserMenu",)"
                        R"("validOnState":"%4"}],"keyTimeouts":1500})";
    QCOMPARE(outputOf("last-key --json"), success.arg(R"("key":0,)", R"("Success")"));
    QCOMPARE(outputOf("times --json"),
             success.arg(R"("keyTimeouts":{"Help":6000,"Menu":3000},)", R"("Success")"));
    QCOMPARE(outputOf("lists --json"),
             R"({"errorId":"Undefined","modifierKeyList":{"ModifierKeys":)" +
                 row.arg("Both", "Help", "Ok", "Idle") +
                 R"(,"resultId":"Success"})"
                 "\n"
                 R"({"errorId":"Undefined","resultId":"Success","shortcutKeyList":)"
                 R"({"ShortcutKeys":)" +
                 row.arg("Chord", "Feed", "Up", "Idle").replace("}],", "},{\"keys\":[\"\\u001b[2J\"]}],") +
                 "}\n");
    QCOMPARE(outputOf("test result --json"), success.arg("", "0"));
    QCOMPARE(outputOf("simulate Up --action Pressed --json"), success.arg("", R"("Success")"));
}

void ControlCommandsTest::lastKeyIsNamed()
{
    QVERIFY(launch());
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction("announce SingleKey UserMenu - Menu"));
    QCOMPARE(outputOf("last-key"), QStringLiteral("Menu (139)\n"));
}

void ControlCommandsTest::simulatedKeysArePressedAndReleased()
{
    QVERIFY(launch());
    QCOMPARE(outputOf("simulate Up Menu"), QString());
    QVERIFY(awaitAction("announce SingleKey UserMenu ServiceTool Menu"));
    QVERIFY(actions().contains("speak EmbosserCore 24"));
}

void ControlCommandsTest::simulatedKeysHaveOneActionIfWanted()
{
    QVERIFY(launch());
    QCOMPARE(outputOf("simulate Menu --action Pressed"), QString());
    QCOMPARE(outputOf("simulate Menu --action Repeated"), QString());
    QVERIFY(!actions().contains("announce SingleKey UserMenu ServiceTool Menu"));
    QCOMPARE(outputOf("simulate Menu --action Released"), QString());
    QVERIFY(awaitAction("announce SingleKey UserMenu ServiceTool Menu"));
    QCOMPARE(actions().filter("announce").size(), 1);
}

void ControlCommandsTest::senderIsServiceToolUnlessAnotherIsNamed()
{
    QVERIFY(launch());
    QCOMPARE(outputOf("last-key"), QStringLiteral("no key yet (0)\n"));
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction("announce SingleKey UserMenu ServiceTool Menu"));
    QCOMPARE(outputOf("last-key --sender WwwApi"), QStringLiteral("Menu (139)\n"));
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction("announce SingleKey UserMenu WwwApi Menu"));
}

void ControlCommandsTest::listsOfKeysReachTheRecognisers()
{
    QVERIFY(launch());
    QCOMPARE(outputOf("combine Help Ok"), QString());
    QVERIFY(awaitAction("announce Both UserMenu ServiceTool Help Ok"));
    QCOMPARE(outputOf("shortcut Feed Up --sender WwwApi"), QString());
    QVERIFY(awaitAction("announce Chord UserMenu WwwApi Feed Up"));
}

void ControlCommandsTest::keyboardTestIsBegunAndItsResultForgotten()
{
    QVERIFY(launch());
    device().setState(ls::StateId::Print);
    QCOMPARE(outputOf("test start"), QString());
    tap(ls::KeyId::Up);
    QVERIFY(awaitAction("speak EmbosserCore 24"));
    QCOMPARE(outputOf("test result"), QStringLiteral("1 different key was released in the test\n"));
    QCOMPARE(outputOf("test result"), QStringLiteral("0 different keys were released in the test\n"));
}

void ControlCommandsTest::wrongLinesAreRefused_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("verb") << "press Help"
                          << "\"press\" is not a verb; --help lists them.\n";
    QTest::newRow("escape") << "\x1b[31m"
                            << "\"\\u001b[31m\" is not a verb; --help lists them.\n";
    QTest::newRow("no keys") << "simulate"
                             << "Which keys? Such as Help, or Function Up.\n";
    QTest::newRow("word too many") << "last-key Help"
                                   << "There is an argument too many: Help.\n";
    QTest::newRow("test of what") << "test"
                                  << "Say test start or test result.\n";
    QTest::newRow("action") << "simulate Help --action LongPress"
                            << "The action is Pressed, Released or Repeated, not \"LongPress\".\n";
    QTest::newRow("timeout") << "last-key --timeout 0"
                             << "The timeout is a whole number of seconds, from 1 to 3600.\n";
    QTest::newRow("option") << "last-key --action Pressed"
                            << "Unknown option 'action'.\n";
    QTest::newRow("prefix") << "last-key --prefix com..vantre"
                            << "\"com..vantre\" is not a prefix of bus names, such as com.vantre.\n";
}

void ControlCommandsTest::wrongLinesAreRefused()
{
    QFETCH(QString, line);
    ControlProgram run(noBus, line.split(' '));
    QCOMPARE(run.status(), 2);
    QTEST(QString::fromUtf8(run.err()), "complaint");
    QCOMPARE(run.out(), QByteArray());
}

void ControlCommandsTest::helpSaysWhatACommandChanges_data()
{
    QTest::addColumn<QString>("verb");
    for (const char* verb : {"last-key", "times", "lists", "simulate", "combine", "shortcut", "test"}) {
        QTest::newRow(verb) << verb;
    }
}

void ControlCommandsTest::helpSaysWhatACommandChanges()
{
    QFETCH(QString, verb);
    ControlProgram run(noBus, {verb, "--help"});
    QCOMPARE(run.status(), 0);
    const QString help = QString::fromUtf8(run.out()).simplified();
    QVERIFY(help.startsWith("Usage: keyboard-handlerctl " + verb));
    QVERIFY(help.contains("The next announcement names the sender of this command as its sender."));
    QCOMPARE(help.contains("makes the daemon forget it"), verb == "test");
    QVERIFY(help.contains("Examples: keyboard-handlerctl " + verb));
}

void ControlCommandsTest::outputThatCannotBeWrittenIsReported()
{
    QVERIFY(launch());
    ControlProgram run = program("last-key");
    run.setShell("exec \"$0\" \"$@\" >/dev/full");
    QCOMPARE(run.status(), 2);
    QCOMPARE(run.err(), QByteArray("The output could not be written.\n"));
}

QTEST_GUILESS_MAIN(ControlCommandsTest)
#include "ControlCommandsTest.moc"

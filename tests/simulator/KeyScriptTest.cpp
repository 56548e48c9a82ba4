// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"
#include "simulator/script/ExpectationWords.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ServiceWords.h"

#include <ls/MessageKeys.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

namespace {

QString firstFault(const ParsedScript& parsed)
{
    if (parsed.faults.isEmpty()) {
        return {};
    }
    return QStringLiteral("%1: %2").arg(parsed.faults.first().line).arg(parsed.faults.first().text);
}

QString kindName(ScriptStep::Kind kind)
{
    static const char* const names[] = {"heading", "press",   "release", "record",
                                        "state",   "service", "command", "console"};
    return QLatin1String(names[int(kind)]);
}

/// "150 press 0 Up" for each step.
QStringList stepsOf(const ParsedScript& parsed)
{
    QStringList lines;
    for (const ScriptStep& step : parsed.script.steps) {
        lines << QStringLiteral("%1 %2 %3 %4")
                     .arg(step.at.count())
                     .arg(kindName(step.kind))
                     .arg(step.keyboard)
                     .arg(step.kind == ScriptStep::Kind::Service
                              ? ServiceWords::wordsOf(step.service).join(' ')
                              : step.text);
    }
    return lines;
}

} // namespace

class KeyScriptTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anEmptyScriptHasDefaults();
    void theHeaderIsRead();
    void stepsHaveTheirTimes_data();
    void stepsHaveTheirTimes();
    void aRecordKeepsItsNumbers();
    void commandsAreConvertedToMaps_data();
    void commandsAreConvertedToMaps();
    void expectationsKeepTheirOrderAndTime();
    void sentencesHaveNamesAndNumbers_data();
    void sentencesHaveNamesAndNumbers();
    void rowsDefineAllThreeKeyLists();
    void theScriptEndsWithItsLastWaitOrExpectation();
    void faultsAreExplained_data();
    void faultsAreExplained();
    void everyFaultyLineIsReported();
    void typedLinesHaveNoHeader();
    void aWrittenScriptParsesToTheSame();
    void aRecordingIsMarked_data();
    void aRecordingIsMarked();
    void anUnreadableFileIsRefused();
    void anOverlongFileIsRefused();
    void binaryFilesAreRefused();
    void aLongFaultyWordIsQuotedInPart();
};

void KeyScriptTest::anEmptyScriptHasDefaults()
{
    const ParsedScript parsed = parseKeyScript(QStringLiteral("\n  # nothing\n\t\n"));
    QCOMPARE(firstFault(parsed), QString());
    QCOMPARE(parsed.script.model, QStringLiteral("Pellit"));
    QCOMPARE(parsed.script.initialState, QStringLiteral("Idle"));
    QVERIFY(KeyListJson::filesOf(parsed.script).isEmpty());
    QVERIFY(parsed.script.steps.isEmpty());
    QCOMPARE(parsed.script.duration().count(), 0);
}

void KeyScriptTest::theHeaderIsRead()
{
    const ParsedScript parsed =
        parseKeyScript(QStringLiteral("model Orvane\nstate Print\n"
                                      "service speechd stop\nservice speechd silent\n"
                                      "row long Hold UserMenu Idle|Error 2 Menu\n"
                                      "row modifier Both Undefined Idle Help Feed One\n"));
    QCOMPARE(firstFault(parsed), QString());
    QCOMPARE(parsed.script.model, QStringLiteral("Orvane"));
    QCOMPARE(parsed.script.initialState, QStringLiteral("Print"));
    QCOMPARE(parsed.script.services,
             (QMap<QString, ServiceChange::Condition>{{"speechd", ServiceChange::Condition::Silent}}));
    QCOMPARE(parsed.script.rows.size(), 2);
    QCOMPARE(parsed.script.rows.first().validOnState, QStringLiteral("Idle|Error"));
    QCOMPARE(parsed.script.rows.first().seconds, 2);
    QCOMPARE(parsed.script.rows.last().keys.join(' '), QStringLiteral("Help Feed One"));
}

void KeyScriptTest::stepsHaveTheirTimes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("steps");
    QTest::newRow("press and release") << "press Up\nwait 70\nrelease Up"
                                       << "0 press 0 Up|70 release 0 Up";
    QTest::newRow("a tap lasts 50 ms") << "tap Up\npress Ok"
                                       << "0 press 0 Up|50 release 0 Up|50 press 0 Ok";
    QTest::newRow("taps are 50 ms apart") << "tap Up Ok"
                                          << "0 press 0 Up|50 release 0 Up|100 press 0 Ok|150 release 0 Ok";
    QTest::newRow("a held key") << "hold Menu 2400"
                                << "0 press 0 Menu|2400 release 0 Menu";
    QTest::newRow("waits add up") << "wait 1\nwait 86399999\npress Up"
                                  << "86400000 press 0 Up";
    QTest::newRow("the second device") << "device 1\npress Up\ndevice 0\npress Up"
                                       << "0 press 1 Up|0 press 0 Up";
    QTest::newRow("a change of state") << "wait 5\nstate Print"
                                       << "5 state 0 Print";
    QTest::newRow("a service that fails") << "wait 5\nservice speechd silent\nservice speechd start"
                                          << "5 service 0 speechd silent|5 service 0 speechd start";
    QTest::newRow("a console line keeps its blanks") << "console  HELP   C"
                                                     << "0 console 0  HELP   C";
    QTest::newRow("an empty console line") << "console"
                                           << "0 console 0 ";
    QTest::newRow("a heading") << "## A key\npress Up"
                               << "0 heading 0 A key|0 press 0 Up";
    QTest::newRow("other line ends") << "press Up\r\nwait 3\r\n"
                                     << "0 press 0 Up";
}

void KeyScriptTest::stepsHaveTheirTimes()
{
    QFETCH(QString, text);
    QFETCH(QString, steps);
    const ParsedScript parsed = parseKeyScript(text);
    QCOMPARE(firstFault(parsed), QString());
    QCOMPARE(stepsOf(parsed).join('|'), steps);
}

void KeyScriptTest::aRecordKeepsItsNumbers()
{
    const ParsedScript parsed = parseKeyScript(QStringLiteral("record 65535 0 -2147483648"));
    QCOMPARE(firstFault(parsed), QString());
    const RawRecord record = parsed.script.steps.value(0).record;
    QCOMPARE(record.type, quint16(65535));
    QCOMPARE(record.code, quint16(0));
    QCOMPARE(record.value, std::numeric_limits<qint32>::min());
}

void KeyScriptTest::commandsAreConvertedToMaps_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QVariantMap>("command");
    QTest::newRow("no arguments") << "GetLastKey"
                                  << QVariantMap{{ls::commandIdKey, "GetLastKey"},
                                                 {ls::senderIdKey, "ServiceTool"}};
    QTest::newRow("a sender") << "GetLastKey as WwwApi"
                              << QVariantMap{{ls::commandIdKey, "GetLastKey"}, {ls::senderIdKey, "WwwApi"}};
    QTest::newRow("a key") << "SimulateKey Pressed Menu"
                           << QVariantMap{{ls::commandIdKey, "SimulateKey"},
                                          {ls::senderIdKey, "ServiceTool"},
                                          {ls::actionIdKey, "Pressed"},
                                          {ls::keyKey, "Menu"}};
    QTest::newRow("keys") << "SimulateModifier as UserMenu Help Feed"
                          << QVariantMap{{ls::commandIdKey, "SimulateModifier"},
                                         {ls::senderIdKey, "UserMenu"},
                                         {ls::keysListKey, QStringList{"Help", "Feed"}}};
    QTest::newRow("no keys") << "SimulateShortcut"
                             << QVariantMap{{ls::commandIdKey, "SimulateShortcut"},
                                            {ls::senderIdKey, "ServiceTool"},
                                            {ls::keysListKey, QStringList()}};
}

void KeyScriptTest::commandsAreConvertedToMaps()
{
    QFETCH(QString, line);
    QFETCH(QVariantMap, command);
    const ParsedScript parsed = parseKeyScript(QStringLiteral("command ") + line);
    QCOMPARE(firstFault(parsed), QString());
    QCOMPARE(parsed.script.steps.value(0).command, command);
}

void KeyScriptTest::expectationsKeepTheirOrderAndTime()
{
    const ParsedScript parsed = parseKeyScript(
        QStringLiteral("expect 70  announce  SingleKey UserMenu -  Up\nwait 1000\nexpect +5 cancel\n"
                       "expect 20 log  two  blanks  \nexpect 0 speak EmbosserMenu 487\n"
                       "expect +0 answer errorId=Undefined resultId=3\n"));
    QCOMPARE(firstFault(parsed), QString());
    QStringList lines;
    for (const Observation& expectation : parsed.script.expectations) {
        lines << QString::number(expectation.at.count()) + ' ' + expectation.text;
    }
    QCOMPARE(lines, QStringList({"70 announce SingleKey UserMenu - Up", "1005 cancel", "20 log two  blanks",
                                 "0 speak EmbosserMenu 487", "1000 answer errorId=Undefined resultId=3"}));
}

void KeyScriptTest::sentencesHaveNamesAndNumbers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("number");
    QTest::newRow("of a key") << "speak KeyUp"
                              << "speak EmbosserCore 24";
    QTest::newRow("of a refusal") << "speak StartingUp"
                                  << "speak EmbosserError 69";
    QTest::newRow("of a menu") << "speak FactoryReset"
                               << "speak EmbosserMenu 487";
    QTest::newRow("without a name") << "speak EmbosserCore 0"
                                    << "speak EmbosserCore 0";
    QTest::newRow("no sentence") << "announce KeyUp UserMenu - Up"
                                 << "announce KeyUp UserMenu - Up";
}

void KeyScriptTest::sentencesHaveNamesAndNumbers()
{
    QFETCH(QString, name);
    QFETCH(QString, number);
    const ParsedScript parsed = parseKeyScript(QStringLiteral("expect 5 ") + name);
    QCOMPARE(firstFault(parsed), QString());
    QCOMPARE(parsed.script.expectations.value(0).text, number);
    QCOMPARE(ExpectationWords::named(number), name);
}

void KeyScriptTest::rowsDefineAllThreeKeyLists()
{
    const ParsedScript parsed = parseKeyScript(QStringLiteral("row long Hold UserMenu Idle 2 Menu"));
    const QMap<QString, QByteArray> lists = KeyListJson::filesOf(parsed.script);
    QCOMPARE(QStringList(lists.keys()),
             QStringList({"longKeyList.json", "modifierKeyList.json", "shortcutKeyList.json"}));
    QCOMPARE(QJsonDocument::fromJson(lists.value("longKeyList.json")).object(),
             QJsonDocument::fromJson(R"({"LongKeys": [{"keys": ["Menu"], "eAction": "Hold", "timeout": 2,
                                         "receiverService": "UserMenu", "validOnState": "Idle"}]})")
                 .object());
    QCOMPARE(QJsonDocument::fromJson(lists.value("shortcutKeyList.json")).object(),
             QJsonDocument::fromJson(R"({"ShortcutKeys": []})").object());
}

void KeyScriptTest::theScriptEndsWithItsLastWaitOrExpectation()
{
    QCOMPARE(parseKeyScript(QStringLiteral("tap Up\nwait 2000")).script.duration().count(), 2050);
    QCOMPARE(parseKeyScript(QStringLiteral("tap Up\nexpect 1550 cancel")).script.duration().count(), 1550);
    QCOMPARE(parseKeyScript(QStringLiteral("expect 10 cancel\ntap Up")).script.duration().count(), 50);
}

void KeyScriptTest::faultsAreExplained_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("fault");
    QTest::newRow("unknown keyword") << "\npush Up"
                                     << "2: \"push\" is not a keyword of a key script.";
    QTest::newRow("keyword in capitals") << "PRESS Up"
                                         << "1: \"PRESS\" is not a keyword of a key script.";
    QTest::newRow("key in small letters") << "press up"
                                          << "1: Unknown key \"up\"; known keys: Back, Chs,";
    QTest::newRow("key missing") << "press"
                                 << "1: Write it as: press KEY";
    QTest::newRow("two keys pressed") << "press Up Ok"
                                      << "1: Write it as: press KEY";
    QTest::newRow("unknown key in a tap") << "tap Up Moo"
                                          << "1: Unknown key \"Moo\"";
    QTest::newRow("empty tap") << "tap"
                               << "1: Write it as: tap KEY...";
    QTest::newRow("unknown state") << "wait 0\nstate Sleep"
                                   << "2: Unknown state \"Sleep\"";
    QTest::newRow("unknown initial state") << "state Sleep"
                                           << "1: Unknown state \"Sleep\"";
    QTest::newRow("initial state twice")
        << "state Idle\nstate Print"
        << "2: The initial state is already given; write \"wait 0\" before the first change.";
    QTest::newRow("late header") << "press Up\nmodel Orvane"
                                 << "2: \"model\" must come before the first step.";
    QTest::newRow("recorded with a word") << "recorded today"
                                          << "1: Write it as: recorded [announcements]";
    QTest::newRow("late recorded") << "wait 0\nrecorded"
                                   << "2: \"recorded\" must come before the first step.";
    QTest::newRow("unknown model") << "model Moo"
                                   << "1: Write it as: model Orvane|Pellit";
    const char* const serviceUsage = "1: Write it as: service state-handler|speechd stop|silent|start";
    QTest::newRow("unknown service") << "service SpeechDaemon stop" << serviceUsage;
    QTest::newRow("unknown condition") << "service speechd die" << serviceUsage;
    QTest::newRow("service without a condition")
        << "wait 0\nservice speechd" << QString(serviceUsage).replace("1: ", "2: ");
    QTest::newRow("service with too many words") << "service speechd stop now" << serviceUsage;
    QTest::newRow("third device") << "device 2"
                                  << "1: Write it as: device 0|1";
    QTest::newRow("negative time") << "wait -1"
                                   << "1: \"-1\" is not a time from 0 to 86400000 ms.";
    QTest::newRow("time in words") << "wait long"
                                   << "1: \"long\" is not a time from 0 to 86400000 ms.";
    QTest::newRow("time in seconds with decimals")
        << "hold Feed 2.25"
        << "1: \"2.25\" is not a time from 0 to 86400000 ms: times are whole milliseconds, 2250 for 2.25 s.";
    QTest::newRow("time with a unit")
        << "wait 2s"
        << "1: \"2s\" is not a time from 0 to 86400000 ms: times are whole milliseconds, 2250 for 2.25 s.";
    QTest::newRow("time overflow") << "wait 99999999999999999999"
                                   << "1: \"99999999999999999999\" is not a time";
    QTest::newRow("time with a placeholder") << "wait %1"
                                             << "1: \"%1\" is not a time from 0 to 86400000 ms.";
    QTest::newRow("more than a day") << "wait 86400000\nwait 1"
                                     << "2: The script would last longer than 24 hours.";
    QTest::newRow("a tap beyond the day") << "wait 86400000\ntap Up"
                                          << "2: The script would last longer than 24 hours.";
    QTest::newRow("a hold without time") << "hold Up"
                                         << "1: Write it as: hold KEY MS";
    QTest::newRow("record too short") << "record 1 2"
                                      << "1: Write it as: record TYPE CODE VALUE";
    QTest::newRow("record out of range") << "record 65536 0 0"
                                         << "1: Write it as: record TYPE CODE VALUE";
    QTest::newRow("unknown command") << "command Dance"
                                     << "1: Unknown command \"Dance\".";
    QTest::newRow("unknown sender") << "command GetLastKey as Moo"
                                    << "1: Unknown service \"Moo\"";
    QTest::newRow("too many arguments") << "command GetLastKey Up"
                                        << "1: GetLastKey takes no arguments.";
    QTest::newRow("simulated key without action")
        << "command SimulateKey Up"
        << "1: Write it as: command SimulateKey [as SERVICE] ACTION KEY";
    QTest::newRow("simulated keys unknown") << "command SimulateModifier Up Moo"
                                            << "1: Unknown key \"Moo\"";
    QTest::newRow("row of unknown kind") << "row odd"
                                         << "1: A row is long, modifier or shortcut, not \"odd\".";
    QTest::newRow("row too short") << "row modifier A UserMenu Idle"
                                   << "1: Write it as: row modifier|shortcut ACTION RECEIVER STATE KEY...";
    QTest::newRow("row with unknown receiver") << "row shortcut A Moo Idle Up"
                                               << "1: Unknown service \"Moo\"";
    QTest::newRow("row with unknown state") << "row long A UserMenu Idle|Moo 1 Up"
                                            << "1: Unknown state \"Moo\"";
    QTest::newRow("row with negative time") << "row long A UserMenu Idle -1 Up"
                                            << "1: \"-1\" is not a number of seconds.";
    QTest::newRow("expectation without time") << "expect cancel"
                                              << "1: \"cancel\" is not a time";
    QTest::newRow("expectation beyond the day") << "wait 2\nexpect +86399999 cancel"
                                                << "2: \"+86399999\" is not a time";
    QTest::newRow("empty expectation") << "expect 5"
                                       << "1: Expect one of announce, speak, cancel, log and answer";
    QTest::newRow("expectation of an unknown sentence file") << "expect 5 speak Moo 1"
                                                             << "1: Unknown translation file \"Moo\".";
    QTest::newRow("expectation without a sentence") << "expect 5 speak EmbosserCore Up"
                                                    << "1: \"Up\" is not a sentence number.";
    QTest::newRow("expectation of an unknown sentence") << "expect 5 speak EmbosserCore"
                                                        << "1: Unknown sentence \"EmbosserCore\".";
    QTest::newRow("expectation of a sentence with too many words")
        << "expect 5 speak KeyUp 24 now"
        << "1: Write it as: expect MS speak SENTENCE or";
    QTest::newRow("incomplete expectation") << "expect 5 announce SingleKey UserMenu"
                                            << "1: Write it as: expect MS announce";
    QTest::newRow("expectation of an unknown receiver") << "expect 5 announce SingleKey Moo -"
                                                        << "1: Unknown service \"Moo\"";
    QTest::newRow("expectation of an unknown key") << "expect 5 announce SingleKey UserMenu - Moo"
                                                   << "1: Unknown key \"Moo\"";
    QTest::newRow("too many steps") << QStringLiteral("tap") + QStringLiteral(" Up").repeated(60000)
                                    << "1: The script has more than 100000 steps.";
}

void KeyScriptTest::faultsAreExplained()
{
    QFETCH(QString, text);
    QFETCH(QString, fault);
    const QString found = firstFault(parseKeyScript(text));
    QVERIFY2(found.startsWith(fault), qPrintable(found));
}

void KeyScriptTest::everyFaultyLineIsReported()
{
    const ParsedScript parsed = parseKeyScript(QStringLiteral("press Moo\npress Up\nwait x\n"));
    QCOMPARE(parsed.faults.size(), 2);
    QCOMPARE(parsed.faults.first().line, 1);
    QCOMPARE(parsed.faults.last().line, 3);
}

void KeyScriptTest::typedLinesHaveNoHeader()
{
    QCOMPARE(stepsOf(parseKeyScriptSteps(QStringLiteral("state Print"))), QStringList("0 state 0 Print"));
    QCOMPARE(firstFault(parseKeyScriptSteps(QStringLiteral("model Orvane"))),
             QStringLiteral("1: \"model\" must come before the first step."));
}

void KeyScriptTest::aWrittenScriptParsesToTheSame()
{
    const QString text = QStringLiteral("model Orvane\n"
                                        "state Print\n"
                                        "service speechd stop\n"
                                        "service state-handler silent\n"
                                        "row long Hold UserMenu Idle|Error 2 Menu\n"
                                        "row shortcut Both WwwApi Idle Help Feed\n"
                                        "device 0\n"
                                        "service state-handler start\n"
                                        "## A heading\n"
                                        "state Idle\n"
                                        "press Up\n"
                                        "expect 0 speak EmbosserCore 24\n"
                                        "wait 70\n"
                                        "device 1\n"
                                        "release Up\n"
                                        "record 4 4 -5\n"
                                        "command SimulateKey as WwwApi Pressed Menu\n"
                                        "command SimulateModifier Help Feed\n"
                                        "command GetLastKey\n"
                                        "console  HELP C\n"
                                        "wait 2000\n"
                                        "expect 1570 announce SingleKey UserMenu - Up\n");
    const ParsedScript parsed = parseKeyScript(text);
    QCOMPARE(firstFault(parsed), QString());
    QCOMPARE(writeKeyScript(parsed.script), text);
}

void KeyScriptTest::aRecordingIsMarked_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("hasOnlyAnnouncements");
    QTest::newRow("everything") << "recorded\n" << false;
    QTest::newRow("announcements only") << "recorded announcements\n" << true;
}

void KeyScriptTest::aRecordingIsMarked()
{
    QFETCH(QString, line);
    const QString text = line + QStringLiteral("model Pellit\nstate Idle\ndevice 0\npress Up\n");
    const ParsedScript parsed = parseKeyScript(text);
    QCOMPARE(firstFault(parsed), QString());
    QVERIFY(parsed.script.recorded);
    QTEST(parsed.script.hasOnlyAnnouncements, "hasOnlyAnnouncements");
    QCOMPARE(writeKeyScript(parsed.script), text);
    QVERIFY(!parseKeyScript(QStringLiteral("press Up")).script.recorded);
}

void KeyScriptTest::anUnreadableFileIsRefused()
{
    QCOMPARE(firstFault(loadKeyScript(QStringLiteral("/nowhere/at.keys"))),
             QStringLiteral("0: /nowhere/at.keys cannot be read: No such file or directory"));
}

void KeyScriptTest::anOverlongFileIsRefused()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("long.keys")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(file.resize(1024 * 1024 + 1));
    QCOMPARE(firstFault(loadKeyScript(file.fileName())),
             QStringLiteral("0: %1 is longer than 1048576 bytes.").arg(file.fileName()));
}

void KeyScriptTest::binaryFilesAreRefused()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("binary.keys")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    for (int i = 0; i < 4096; ++i) {
        file.putChar(char(i * 37));
    }
    file.close();
    const ParsedScript parsed = loadKeyScript(file.fileName());
    QCOMPARE(parsed.faults.value(0).line, 1);
    QVERIFY(parsed.faults.value(0).text.endsWith(QStringLiteral("is not a keyword of a key script.")));
}

void KeyScriptTest::aLongFaultyWordIsQuotedInPart()
{
    const QString word(1024 * 1024, 'x');
    for (const char* const line : {"%1", "wait %1", "press %1", "state %1", "expect %1 cancel"}) {
        const ParsedScript parsed = parseKeyScript(QString::fromLatin1(line).arg(word));
        QCOMPARE(parsed.faults.size(), 1);
        const QString text = parsed.faults.first().text;
        QVERIFY2(text.size() < 500, line);
        QVERIFY2(text.contains(QStringLiteral("xxx ... ")), qPrintable(text));
        QVERIFY2(text.endsWith('.'), qPrintable(text));
    }
}

QTEST_APPLESS_MAIN(KeyScriptTest)
#include "KeyScriptTest.moc"

// SPDX-License-Identifier: MIT
#include "console/Console.h"
#include "service/KeyboardHandler.h"
#include "tests/support/LogRecorder.h"
#include "tests/virtual/DeviceTest.h"

namespace {

const QStringList generalHelp{"log ================= Help =================",
                              "log C [command] [parameter] ...",
                              "log For displaying all available commands type HELP C",
                              "log For displaying all available parameters type HELP S",
                              "log For displaying parameters for a command type HELP [command]",
                              "log ========================================"};

const QStringList actionTable{"log 3    \"LongPress\"", "log 4    \"ModifierCombination\"",
                              "log -1    \"None\"",     "log 1    \"Pressed\"",
                              "log 0    \"Released\"",  "log 2    \"Repeated\"",
                              "log 5    \"Shortcut\""};

/// The lines of a family: each number, blanks, and the quoted identifier.
QStringList tableOf(const QMap<QString, int>& meta)
{
    QStringList lines;
    for (auto entry = meta.cbegin(); entry != meta.cend(); ++entry) {
        const QString blanks(entry.value() < 10 ? 4 : 3, ' ');
        lines.append("log " + QString::number(entry.value()) + blanks + '"' + entry.key() + '"');
    }
    return lines;
}

const QString emptyLine = "log ";
const QString rule = "log ==============================";
const QStringList badArgument{"log Arguments must be of integer type!", emptyLine};
const QStringList notFound{"log Command not found!", emptyLine};

QStringList wrongCount(const QString& command)
{
    return {"log Too many/few arguments received for command \"" + command + "\"", emptyLine};
}

constexpr int processMs = 20;

class RecordingHandler : public KeyboardHandler
{
public:
    using KeyboardHandler::KeyboardHandler;
    QVariantMap process(const QVariantMap& command) override
    {
        commands.append(command);
        QThread::msleep(processMs);
        return {};
    }
    QList<QVariantMap> commands;
};

/// The milliseconds in a line of the timer; -1 for other lines.
int timeOf(const QString& line)
{
    const QRegularExpression pattern("^\"Console\" took (\\d+) ms$");
    const QRegularExpressionMatch match = pattern.match(line);
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

} // namespace

class ConsoleTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() { start(StateId::Idle, {longRow("Menu", 2, "Idle", "MainMenu")}); }
    void unknownLinesPrintTheGeneralHelp_data();
    void unknownLinesPrintTheGeneralHelp();
    void commandListIsSortedByName_data();
    void commandListIsSortedByName();
    void parameterListHasActionsAndKeys_data();
    void parameterListHasActionsAndKeys();
    void helpOfARunnableCommandShowsItsParameters_data();
    void helpOfARunnableCommandShowsItsParameters();
    void commandPrintsItsResponse_data();
    void commandPrintsItsResponse();
    void simulatedKeyIsSentByTheDaemonItself();
    void notificationIsPrintedInItsCategory();
    void notificationIsNotPrintedByDefault();
    void incompleteNotificationIsReportedWithItsPrefix_data();
    void incompleteNotificationIsReportedWithItsPrefix();
    void everyLineIsTimed_data();
    void faultsAreCriticalAndAnswersAreNot_data();
    void faultsAreCriticalAndAnswersAreNot();
    void commandMapEqualsThatOfTheBus();
    void unknownNumbersAreEmptyStringsInTheMap();
    void everyLineIsTimed();
    void timeCoversTheWholeLine();
    void worksAfterInvalidLines();
};

void ConsoleTest::unknownLinesPrintTheGeneralHelp_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("before");
    QTest::newRow("empty") << "" << QStringList{};
    QTest::newRow("blanks") << "   " << QStringList{};
    QTest::newRow("rubbish") << "xyz" << QStringList{};
    QTest::newRow("leading blank before HELP") << " HELP C" << QStringList{};
    QTest::newRow("leading blank before C") << " C 4" << QStringList{};
    QTest::newRow("HELP alone") << "HELP" << QStringList{"log No arguments received for help.", emptyLine};
    QTest::newRow("HELP and blanks") << "help   "
                                     << QStringList{"log No arguments received for help.", emptyLine};
    QTest::newRow("HELP and a word") << "HELP x" << badArgument;
    QTest::newRow("HELP and a fraction") << "HELP 1.5" << badArgument;
    QTest::newRow("HELP and a hexadecimal number") << "HELP 0x4" << badArgument;
    QTest::newRow("HELP C and a word") << "HELP C 4" << badArgument;
    QTest::newRow("HELP S and a word") << "HELP S 4" << badArgument;
    QTest::newRow("HELP without a blank")
        << "HELPC" << QStringList{"log No arguments received for help.", emptyLine};
    QTest::newRow("HELP of a command that is listed only") << "HELP 5" << notFound;
    QTest::newRow("HELP of an unknown command") << "HELP 99" << notFound;
    QTest::newRow("HELP of a negative number") << "HELP -1" << notFound;
    QTest::newRow("C alone") << "C"
                             << QStringList{"log No arguments received for command action.", emptyLine};
    QTest::newRow("any word with C") << "clear"
                                     << QStringList{"log No arguments received for command action.",
                                                    emptyLine};
    QTest::newRow("C and a word") << "C four" << badArgument;
    QTest::newRow("C and a number beyond 32 bits") << "C 4294967300" << badArgument;
    QTest::newRow("any word with C and a word") << "call me" << badArgument;
    QTest::newRow("parameter that is not a number")
        << "C 7 1 Menu" << QStringList{"log Parameters must be of integer type.", emptyLine};
    QTest::newRow("first bad parameter only")
        << "C 7 x y" << QStringList{"log Parameters must be of integer type.", emptyLine};
    QTest::newRow("too many parameters") << "C 4 1" << wrongCount("GetLastKey");
    QTest::newRow("too many parameters for the times") << "C 3 1" << wrongCount("GetLongKeysTimeout");
    QTest::newRow("one parameter for SimulateKey") << "C 7 1" << wrongCount("SimulateKey");
    QTest::newRow("three parameters for SimulateKey") << "C 7 1 139 2" << wrongCount("SimulateKey");
    QTest::newRow("command that is listed only") << "C 5" << notFound + wrongCount("StartTestMode");
    QTest::newRow("command that is not served") << "C 10" << notFound + wrongCount("GetKeyList");
    QTest::newRow("no command") << "C 99" << notFound + wrongCount("");
}

void ConsoleTest::unknownLinesPrintTheGeneralHelp()
{
    QFETCH(QString, line);
    QFETCH(QStringList, before);
    device->typeLine(line);
    QCOMPARE(device->take(), before + generalHelp);
}

void ConsoleTest::commandListIsSortedByName_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("as shown") << "HELP C";
    QTest::newRow("small") << "help c";
    QTest::newRow("many blanks") << "HELP \t   C  ";
}

void ConsoleTest::commandListIsSortedByName()
{
    QFETCH(QString, line);
    device->typeLine(line);
    const QStringList table = tableOf(KeyboardHandlerCmdId::meta);
    QCOMPARE(table.first(), QString("log 10   \"GetKeyList\""));
    QCOMPARE(table.at(1), QString("log 4    \"GetLastKey\""));
    const QStringList expected =
        QStringList{"log ========== Commands =========="} + table + QStringList{rule, emptyLine};
    QCOMPARE(device->take(), expected);
}

void ConsoleTest::parameterListHasActionsAndKeys_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("as shown") << "HELP S";
    QTest::newRow("mixed") << "Help s";
}

void ConsoleTest::parameterListHasActionsAndKeys()
{
    QFETCH(QString, line);
    device->typeLine(line);
    const QStringList end{rule, emptyLine};
    const QStringList expected = QStringList{"log ========== Key States =========="} + actionTable + end +
                                 QStringList{"log ========== Keys =========="} + tableOf(KeyId::meta) + end;
    QVERIFY(expected.contains("log 158   \"Back\""));
    QCOMPARE(device->take(), expected);
}

void ConsoleTest::helpOfARunnableCommandShowsItsParameters_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("output");
    QTest::newRow("last key") << "HELP 4" << QStringList{"log \"GetLastKey\" params: [None]", emptyLine};
    QTest::newRow("times") << "HELP 3" << QStringList{"log \"GetLongKeysTimeout\" params: [None]", emptyLine};
    QTest::newRow("with a sign") << "HELP +4" << QStringList{"log \"GetLastKey\" params: [None]", emptyLine};
    QTest::newRow("further words are ignored")
        << "HELP 4 5" << QStringList{"log \"GetLastKey\" params: [None]", emptyLine};
    QTest::newRow("simulation") << "HELP 7"
                                << QStringList{"log \"SimulateKey\" params: [KeyActionId id] [KeyId id]",
                                               emptyLine} +
                                       actionTable + QStringList{emptyLine} + tableOf(KeyId::meta);
}

void ConsoleTest::helpOfARunnableCommandShowsItsParameters()
{
    QFETCH(QString, line);
    device->typeLine(line);
    QTEST(device->take(), "output");
}

void ConsoleTest::commandPrintsItsResponse_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QString>("response");
    const QString success = R"(("errorId", QVariant(QString, "Undefined")))";
    QTest::newRow("last key")
        << "C 4"
        << "QMap(" + success + R"(("key", QVariant(int, 0))("resultId", QVariant(QString, "Success"))))";
    QTest::newRow("small letter and blanks")
        << "c   4 "
        << "QMap(" + success + R"(("key", QVariant(int, 0))("resultId", QVariant(QString, "Success"))))";
    QTest::newRow("times")
        << "C 3"
        << "QMap(" + success +
               R"(("keyTimeouts", QVariant(QVariantMap, QMap(("Menu", QVariant(int, 2000)))))("resultId", QVariant(QString, "Success"))))";
}

void ConsoleTest::commandPrintsItsResponse()
{
    QFETCH(QString, line);
    QFETCH(QString, response);
    device->typeLine(line);
    QCOMPARE(device->take(), (QStringList{"log Process command response", emptyLine, "log " + response}));
}

void ConsoleTest::simulatedKeyIsSentByTheDaemonItself()
{
    device->typeLine("C 7 0 139");
    const QStringList expected{
        "log Process command response", emptyLine, "announce SingleKey UserMenu KeyboardHandler Menu",
        R"(log QMap(("errorId", QVariant(QString, "Undefined"))("resultId", QVariant(QString, "Success"))))"};
    QCOMPARE(device->take(), expected);
}

void ConsoleTest::notificationIsPrintedInItsCategory()
{
    QLoggingCategory::setFilterRules("Console.debug=true");
    const LogRecorder log;
    device->tap(KeyId::Menu);
    QLoggingCategory::setFilterRules({});
    const QVector<LogLine> printed{{QtDebugMsg, "Console", "----------- Notification -----------"},
                                   {QtDebugMsg, "Console", "NotifcationId: \"KeyboardChange\""},
                                   {QtDebugMsg, "Console", "SenderId: \"\""},
                                   {QtDebugMsg, "Console", "------------------------------------"}};
    QCOMPARE(log.lines(), printed);
}

void ConsoleTest::notificationIsNotPrintedByDefault()
{
    device->tap(KeyId::Menu);
    QCOMPARE(device->take(), QStringList{"announce SingleKey UserMenu - Menu"});
}

void ConsoleTest::incompleteNotificationIsReportedWithItsPrefix_data()
{
    QTest::addColumn<QString>("missing");
    for (const char* key : {"notificationId", "actionId", "senderId"}) {
        QTest::newRow(key) << key;
    }
}

void ConsoleTest::incompleteNotificationIsReportedWithItsPrefix()
{
    QFETCH(QString, missing);
    QVariantMap map{{notificationIdKey, "KeyboardChange"}, {actionIdKey, "A"}, {senderIdKey, ""}};
    map.remove(missing);
    QLoggingCategory::setFilterRules("Console.debug=true");
    const LogRecorder log;
    Q_EMIT device->handler().notification(map);
    QLoggingCategory::setFilterRules({});
    const QVector<LogLine> printed{
        {QtCriticalMsg, "default", "QVariantMap&)> ERROR: Invalid notification received!"}};
    QCOMPARE(log.lines(), printed);
}

void ConsoleTest::everyLineIsTimed_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("command") << "C 4";
    QTest::newRow("help") << "HELP C";
    QTest::newRow("rubbish") << "xyz";
    QTest::newRow("failed command") << "C x";
    QTest::newRow("failed help") << "HELP x";
}

void ConsoleTest::everyLineIsTimed()
{
    QFETCH(QString, line);
    QLoggingCategory::setFilterRules("Timer.debug=true");
    const LogRecorder log;
    device->typeLine(line);
    QLoggingCategory::setFilterRules({});
    const LogLine last = log.lines().last();
    QCOMPARE(last.type, QtDebugMsg);
    QCOMPARE(last.category, QString("Timer"));
    QVERIFY2(timeOf(last.text) >= 0, qPrintable(last.text));
}

void ConsoleTest::timeCoversTheWholeLine()
{
    RecordingHandler handler(nullptr);
    auto* console = new Console(&handler);
    QLoggingCategory::setFilterRules("Timer.debug=true");
    const LogRecorder log;
    QMetaObject::invokeMethod(console, "onTextReceived", Q_ARG(QString, "C 4"));
    QLoggingCategory::setFilterRules({});
    const QString last = log.lines().last().text;
    QVERIFY2(timeOf(last) >= processMs, qPrintable(last));
}

void ConsoleTest::worksAfterInvalidLines()
{
    device->typeLine(QString(70000, 'C'));
    device->typeLine(QString::fromUtf8("C \xc3\xa9 \xe2\x82\xac"));
    device->take();
    device->typeLine("HELP 4");
    QCOMPARE(device->take().first(), QString("log \"GetLastKey\" params: [None]"));
}

void ConsoleTest::faultsAreCriticalAndAnswersAreNot_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<QStringList>("faults");
    QTest::newRow("general help") << "xyz" << QStringList{};
    QTest::newRow("list of commands") << "HELP C" << QStringList{};
    QTest::newRow("list of parameters") << "HELP S" << QStringList{};
    QTest::newRow("response") << "C 4" << QStringList{};
    QTest::newRow("description") << "HELP 7"
                                 << QStringList{"\"SimulateKey\" params: [KeyActionId id] [KeyId id]"};
    QTest::newRow("HELP alone") << "HELP" << QStringList{"No arguments received for help."};
    QTest::newRow("no number") << "C x" << QStringList{"Arguments must be of integer type!"};
    QTest::newRow("no command") << "C 99"
                                << QStringList{"Command not found!",
                                               "Too many/few arguments received for command \"\""};
}

void ConsoleTest::faultsAreCriticalAndAnswersAreNot()
{
    QFETCH(QString, line);
    const LogRecorder log;
    device->typeLine(line);
    QTEST(log.texts(QtCriticalMsg), "faults");
    QCOMPARE(log.texts(QtDebugMsg).size() + log.texts(QtCriticalMsg).size(), log.lines().size());
}

void ConsoleTest::commandMapEqualsThatOfTheBus()
{
    RecordingHandler handler(nullptr);
    auto* console = new Console(&handler);
    QMetaObject::invokeMethod(console, "onTextReceived", Q_ARG(QString, "C 7 1 139"));
    const QVariantMap expected{{commandIdKey, "SimulateKey"},
                               {subCommandIdKey, ""},
                               {senderIdKey, "KeyboardHandler"},
                               {actionIdKey, "Pressed"},
                               {keyKey, "Menu"}};
    device->take();
    QCOMPARE(handler.commands, QList<QVariantMap>{expected});
}

void ConsoleTest::unknownNumbersAreEmptyStringsInTheMap()
{
    RecordingHandler handler(nullptr);
    auto* console = new Console(&handler);
    QMetaObject::invokeMethod(console, "onTextReceived", Q_ARG(QString, "C 7 77 9999"));
    device->take();
    QCOMPARE(handler.commands.size(), 1);
    QCOMPARE(handler.commands.first().value(actionIdKey), QVariant(QString()));
    QCOMPARE(handler.commands.first().value(keyKey), QVariant(QString()));
}

VIRTUAL_TIME_TEST_MAIN(ConsoleTest)
#include "ConsoleTest.moc"

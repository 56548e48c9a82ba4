// SPDX-License-Identifier: MIT
#include "tests/checker/CommandRun.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString nothing = QStringLiteral("Nothing is spoken and nothing is announced.");

CommandRun what(const QString& statements, const QStringList& options = {})
{
    return {checker::Commands::what, QStringList{"what", statements} + options + QStringList{KEY_LISTS}};
}

} // namespace

class WhatTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void combinationIsSpokenAndAnnounced();
    void loneKeyIsAnnouncedAfterTheLastStatement();
    void semicolonsAndNewlinesSeparateStatements();
    void refusedActionIsNamed();
    void longPressInOneOfItsStatesIsNotRefused();
    void heldKeyRepeatsItsLongPress();
    void optionsChooseStateAndModel();
    void unknownStatementsAreRefused_data();
    void unknownStatementsAreRefused();
    void controlCharactersAreEscaped();
    void helpIsPrinted();
};

void WhatTest::combinationIsSpokenAndAnnounced()
{
    const CommandRun run = what("tap Help Feed");
    QCOMPARE(run.status, int(checker::Clean));
    QCOMPARE(run.lines(),
             QStringList({"   0.050  speaks \"Help\"", "   0.150  speaks \"Feed\"",
                          "   0.150  announces PaperStatus to PrintManager, with Help and Feed"}));
    QCOMPARE(run.err, QString());
}

void WhatTest::loneKeyIsAnnouncedAfterTheLastStatement()
{
    QCOMPARE(
        what("tap Feed").lines(),
        QStringList({"   0.050  speaks \"Feed\"", "   1.550  announces SingleKey to PrintManager, with Feed",
                     "   1.550  announces SingleKey to UserMenu, with Feed"}));
}

void WhatTest::semicolonsAndNewlinesSeparateStatements()
{
    const QStringList expected{"   0.100  announces VolumeUp to UserMenu, with Function and Up"};
    QCOMPARE(what("press Function; wait 100;press Up").lines(), expected);
    QCOMPARE(what("press Function\nwait 100\npress Up\n").lines(), expected);
}

void WhatTest::refusedActionIsNamed()
{
    const CommandRun run = what("press Feed; wait 100; press Ok; wait 50; release Ok; wait 50; release Feed");
    QCOMPARE(run.status, int(checker::Clean));
    QCOMPARE(run.lines(),
             QStringList(
                 {"   0.100  LoadPaper is refused: it is valid in PrintOff and the state is Idle", nothing}));
}

void WhatTest::longPressInOneOfItsStatesIsNotRefused()
{
    QCOMPARE(what("hold Off 3300").lines(),
             QStringList({"   3.250  announces PowerOff to PrintManager, with Off"}));
}

void WhatTest::heldKeyRepeatsItsLongPress()
{
    QCOMPARE(what("press Ok", {"--state", "Error"}).lines(),
             QStringList({"   1.250  announces AcknowledgeError to ErrorHandler, with Ok",
                          "   2.273  announces AcknowledgeError to ErrorHandler, with Ok",
                          "The long press repeats while the key is held."}));
}

void WhatTest::optionsChooseStateAndModel()
{
    QCOMPARE(what("tap Up", {"--state", "Startup"}).lines(),
             QStringList({"   0.000  cancels earlier speech", "   0.000  speaks the sentence StartingUp"}));
    QCOMPARE(what("tap Up", {"--state", "Undefined"}).lines(),
             QStringList({"   0.050  announces SingleKey to UserMenu, with Up"}));
    QVERIFY(!what("tap Function").out.contains("speaks"));
    QVERIFY(what("tap Function", {"--model", "Orvane"}).out.contains("speaks \"Function\""));
}

void WhatTest::unknownStatementsAreRefused_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("console") << QStringList{"console C 5"} << "The model does not know console lines";
    QTest::newRow("speech daemon") << QStringList{"tap Up; service speechd stop"}
                                   << "The model does not know failures of the speech daemon";
    QTest::newRow("unknown key") << QStringList{"tap Up; tap Bell"} << "Statement 2: Unknown key \"Bell\"";
    QTest::newRow("unknown state") << QStringList{"tap Up", "--state", "Dreaming"}
                                   << "Unknown state \"Dreaming\"";
    QTest::newRow("unknown model") << QStringList{"tap Up", "--model", "Other"} << "Unknown model \"Other\"";
    QTest::newRow("unknown option") << QStringList{"tap Up", "--states", "Idle"} << "states";
    QTest::newRow("no statements") << QStringList{} << "STATEMENTS is missing";
    QTest::newRow("no lists") << QStringList{"tap Up", "/dev"} << "/dev has no longKeyList.json";
}

void WhatTest::unknownStatementsAreRefused()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);
    const QStringList folder = arguments.contains("/dev") ? QStringList() : QStringList{KEY_LISTS};
    const QStringList all =
        arguments.isEmpty() ? QStringList{"what"} : QStringList{"what"} + arguments + folder;
    const CommandRun run(checker::Commands::what, all);
    QCOMPARE(run.status, int(checker::Unusable));
    QCOMPARE(run.out, QString());
    QVERIFY2(run.err.contains(complaint), qPrintable(run.err));
}

void WhatTest::controlCharactersAreEscaped()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("shortcutKeyList.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        R"({"ShortcutKeys": [{"keys": ["Feed", "Ok"], "eAction": "\u001b[2J", "receiverService": "UserMenu",
                   "validOnState": "Idle"}]})");
    file.close();
    const CommandRun run(checker::Commands::what, {"what", "press Feed; press Ok", folder.path()});
    QCOMPARE(run.lines(), QStringList({"   0.000  announces \\u001b[2J to UserMenu, with Feed and Ok"}));
    QVERIFY(!CommandRun(checker::Commands::what, {"what", "tap \x1b[2J"}).err.contains('\x1b'));
}

void WhatTest::helpIsPrinted()
{
    const CommandRun run(checker::Commands::what, {"what", "--help"});
    QCOMPARE(run.status, int(checker::Clean));
    QVERIFY2(run.out.contains("Usage: keyboard-handler-keys what [option...] STATEMENTS [path...]"),
             qPrintable(run.out));
}

QTEST_GUILESS_MAIN(WhatTest)
#include "WhatTest.moc"

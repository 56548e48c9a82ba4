// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"

#include <signal.h>

/// Statements of clients.
class SessionStepsTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void statementsMayTakeTime();
    void statementsWithoutDelayAreExecutedImmediately();
    void faultyStatementsDoNothing_data();
    void faultyStatementsDoNothing();
    void aDepartingClientReleasesItsKeys();
    void keysWithoutClientStayDown();
    void pendingStepsAreLimited();
    void scriptsWithoutStepsAreNotQueued();
    void manyStepsDoNotBlockTheSession();
    void inputOfAStoppedDaemonIsLimited_data();
    void inputOfAStoppedDaemonIsLimited();
};

void SessionStepsTest::statementsMayTakeTime()
{
    QVERIFY(launch());
    QCOMPARE(execute("tap Help Feed; wait 100; hold Menu 50; device 1; tap Ok"), QString());
    QVERIFY(awaitEntry("announcement", "action", "PaperStatus"));
    WAIT_FOR_EQUAL(keys(), QStringList({"0 Help 1", "0 Help 0", "0 Feed 1", "0 Feed 0", "0 Menu 1",
                                        "0 Menu 0", "1 Ok 1", "1 Ok 0"}));
}

void SessionStepsTest::statementsWithoutDelayAreExecutedImmediately()
{
    QVERIFY(launch());
    QCOMPARE(execute("press Up; state Print; release Up"), QString());
    QCOMPARE(keys(), QStringList({"0 Up 1", "0 Up 0"}));
    QCOMPARE(session().state(), QStringLiteral("Print"));
}

void SessionStepsTest::faultyStatementsDoNothing_data()
{
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("fault");
    QTest::newRow("unknown keyword") << "press Up; jump"
                                     << "\"jump\" is not a keyword of a key script.";
    QTest::newRow("header") << "press Up; model Orvane"
                            << "\"model\" must come before the first step.";
    QTest::newRow("expectation") << "press Up; expect 0 cancel"
                                 << "Expectations are allowed only in a script that is replayed.";
    QTest::newRow("long") << "press Up; console " + QString(64 * 1024, 'x')
                          << "The statements are longer than 65536 characters.";
    QTest::newRow("too many") << "press Up;" + QString("press Up;").repeated(1000)
                              << "No more than 1000 steps can be pending.";
}

void SessionStepsTest::faultyStatementsDoNothing()
{
    QFETCH(QString, statements);
    QVERIFY(launch());
    QTEST(execute(statements), "fault");
    QVERIFY(tapMenuAfter(50));
    QCOMPARE(keys(), QStringList({"0 Menu 1", "0 Menu 0"}));
}

void SessionStepsTest::aDepartingClientReleasesItsKeys()
{
    QVERIFY(launch());
    QCOMPARE(execute("press Help; device 1; press Up; wait 200; press Down", 7), QString());
    QCOMPARE(execute("press Ok", 8), QString());
    session().releaseKeysOf(7);
    QCOMPARE(keys(), QStringList({"0 Help 1", "1 Up 1", "0 Ok 1", "0 Help 0", "1 Up 0"}));
    QVERIFY(tapMenuAfter(600));
    QCOMPARE(keys().filter("Down").size(), 0);
    session().releaseKeysOf(8);
    QVERIFY(keys().contains("0 Ok 0"));
}

void SessionStepsTest::keysWithoutClientStayDown()
{
    QVERIFY(launch());
    QCOMPARE(execute("press Help"), QString());
    session().releaseKeysOf(0);
    session().releaseKeysOf(-1);
    QCOMPARE(keys(), QStringList("0 Help 1"));
}

void SessionStepsTest::pendingStepsAreLimited()
{
    QVERIFY(launch());
    int taken = 0;
    while (taken < 2000 && execute("wait 3600000; press Up", taken).isEmpty()) {
        ++taken;
    }
    QCOMPARE(taken, 500);
    QCOMPARE(execute("wait 3600000; press Up"), QStringLiteral("No more than 1000 steps can be pending."));
    session().releaseKeysOf(7);
    session().releaseKeysOf(8);
    QCOMPARE(execute("wait 3600000; press Up"), QString());
}

void SessionStepsTest::scriptsWithoutStepsAreNotQueued()
{
    QVERIFY(launch());
    for (int i = 0; i < 2000; ++i) {
        QCOMPARE(execute("wait 86400000"), QString());
    }
}

void SessionStepsTest::manyStepsDoNotBlockTheSession()
{
    QVERIFY(launch());
    const QString burst = QStringLiteral("state Print;") + QString("tap Up;").repeated(400);
    QCOMPARE(execute(burst.chopped(1)), QString());
    QCOMPARE(execute(QString("press Up;release Up;command GetLastKey;console C 4;").repeated(20)), QString());
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Session::Status::Ready));
    QCOMPARE(execute("wait 0"), QString());
}

void SessionStepsTest::inputOfAStoppedDaemonIsLimited_data()
{
    QTest::addColumn<QString>("statements");
    QTest::newRow("keys") << QString("press Up; release Up;").repeated(400);
    QTest::newRow("typed lines") << "console " + QString(50'000, 'x');
}

void SessionStepsTest::inputOfAStoppedDaemonIsLimited()
{
    QFETCH(QString, statements);
    QVERIFY(launch());
    QCOMPARE(kill(pid_t(session().daemonProcess()), SIGSTOP), 0);
    QString fault;
    for (int i = 0; i < 100 && fault.isEmpty(); ++i) {
        fault = execute(statements);
    }
    QCOMPARE(kill(pid_t(session().daemonProcess()), SIGCONT), 0);
    QCOMPARE(fault, QStringLiteral("The daemon does not read its input."));
    WAIT_FOR(execute("state Print").isEmpty());
    QCOMPARE(execute("wait 100; tap Down"), QString());
    QVERIFY(awaitEntry("announcement", "receiver", "PrintManager"));
}

QTEST_GUILESS_MAIN(SessionStepsTest)
#include "SessionStepsTest.moc"

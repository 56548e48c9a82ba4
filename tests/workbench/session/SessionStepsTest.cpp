// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/workbench/session/SessionTest.h"

#include <signal.h>

/// What clients do to the device of a session.
class SessionStepsTest : public SessionTest
{
    Q_OBJECT

private Q_SLOTS:
    void statementsThatTakeTimeWork();
    void whatIsDueIsDoneAtOnce();
    void faultyStatementsDoNothing_data();
    void faultyStatementsDoNothing();
    void aClientThatGoesReleasesItsKeys();
    void nobodysKeysStayDown();
    void pendingStepsAreLimited();
    void scriptsOfWaitsAloneAreNotKept();
    void manyStepsLeaveTheSessionAlive();
    void aDaemonThatTakesNothingIsGivenNoMore_data();
    void aDaemonThatTakesNothingIsGivenNoMore();
};

void SessionStepsTest::statementsThatTakeTimeWork()
{
    QVERIFY(launch());
    QCOMPARE(take("tap Help Feed; wait 100; hold Menu 50; device 1; tap Ok"), QString());
    QVERIFY(awaitEntry("announcement", "action", "PaperStatus"));
    WAIT_FOR_EQUAL(keys(), QStringList({"0 Help 1", "0 Help 0", "0 Feed 1", "0 Feed 0", "0 Menu 1",
                                        "0 Menu 0", "1 Ok 1", "1 Ok 0"}));
}

void SessionStepsTest::whatIsDueIsDoneAtOnce()
{
    QVERIFY(launch());
    QCOMPARE(take("press Up; state Print; release Up"), QString());
    QCOMPARE(keys(), QStringList({"0 Up 1", "0 Up 0"}));
    QCOMPARE(session().state(), QStringLiteral("Print"));
}

void SessionStepsTest::faultyStatementsDoNothing_data()
{
    QTest::addColumn<QString>("statements");
    QTest::addColumn<QString>("fault");
    QTest::newRow("unknown keyword") << "press Up; jump"
                                     << "\"jump\" is no keyword of a key script.";
    QTest::newRow("header") << "press Up; model Orvane"
                            << "\"model\" must stand before the first step.";
    QTest::newRow("expectation") << "press Up; expect 0 cancel"
                                 << "Expectations have their place in a script that is replayed.";
    QTest::newRow("long") << "press Up; console " + QString(64 * 1024, 'x')
                          << "More than 65536 characters cannot be taken at once.";
    QTest::newRow("too many") << "press Up;" + QString("press Up;").repeated(1000)
                              << "More than 1000 steps cannot wait for their time.";
}

void SessionStepsTest::faultyStatementsDoNothing()
{
    QFETCH(QString, statements);
    QVERIFY(launch());
    QTEST(take(statements), "fault");
    QVERIFY(tapsMenuAfter(50));
    QCOMPARE(keys(), QStringList({"0 Menu 1", "0 Menu 0"}));
}

void SessionStepsTest::aClientThatGoesReleasesItsKeys()
{
    QVERIFY(launch());
    QCOMPARE(take("press Help; device 1; press Up; wait 200; press Down", 7), QString());
    QCOMPARE(take("press Ok", 8), QString());
    session().releaseKeysOf(7);
    QCOMPARE(keys(), QStringList({"0 Help 1", "1 Up 1", "0 Ok 1", "0 Help 0", "1 Up 0"}));
    QVERIFY(tapsMenuAfter(600));
    QCOMPARE(keys().filter("Down").size(), 0);
    session().releaseKeysOf(8);
    QVERIFY(keys().contains("0 Ok 0"));
}

void SessionStepsTest::nobodysKeysStayDown()
{
    QVERIFY(launch());
    QCOMPARE(take("press Help"), QString());
    session().releaseKeysOf(0);
    session().releaseKeysOf(-1);
    QCOMPARE(keys(), QStringList("0 Help 1"));
}

void SessionStepsTest::pendingStepsAreLimited()
{
    QVERIFY(launch());
    int taken = 0;
    while (taken < 2000 && take("wait 3600000; press Up", taken).isEmpty()) {
        ++taken;
    }
    QCOMPARE(taken, 500);
    QCOMPARE(take("wait 3600000; press Up"),
             QStringLiteral("More than 1000 steps cannot wait for their time."));
    session().releaseKeysOf(7);
    session().releaseKeysOf(8);
    QCOMPARE(take("wait 3600000; press Up"), QString());
}

void SessionStepsTest::scriptsOfWaitsAloneAreNotKept()
{
    QVERIFY(launch());
    for (int i = 0; i < 2000; ++i) {
        QCOMPARE(take("wait 86400000"), QString());
    }
}

void SessionStepsTest::manyStepsLeaveTheSessionAlive()
{
    QVERIFY(launch());
    const QString burst = QStringLiteral("state Print;") + QString("tap Up;").repeated(400);
    QCOMPARE(take(burst.chopped(1)), QString());
    QCOMPARE(take(QString("press Up;release Up;command GetLastKey;console C 4;").repeated(20)), QString());
    QCOMPARE(session().restart({}), QString());
    QVERIFY(awaitStatus(Session::Status::Ready));
    QCOMPARE(take("wait 0"), QString());
}

void SessionStepsTest::aDaemonThatTakesNothingIsGivenNoMore_data()
{
    QTest::addColumn<QString>("statements");
    QTest::newRow("keys") << QString("press Up; release Up;").repeated(400);
    QTest::newRow("typed lines") << "console " + QString(50'000, 'x');
}

void SessionStepsTest::aDaemonThatTakesNothingIsGivenNoMore()
{
    QFETCH(QString, statements);
    QVERIFY(launch());
    QCOMPARE(kill(pid_t(session().daemonProcess()), SIGSTOP), 0);
    QString fault;
    for (int i = 0; i < 100 && fault.isEmpty(); ++i) {
        fault = take(statements);
    }
    QCOMPARE(kill(pid_t(session().daemonProcess()), SIGCONT), 0);
    QCOMPARE(fault, QStringLiteral("The daemon does not take what it is given."));
    WAIT_FOR(take("state Print").isEmpty());
    QCOMPARE(take("wait 100; tap Down"), QString());
    QVERIFY(awaitEntry("announcement", "receiver", "PrintManager"));
}

QTEST_GUILESS_MAIN(SessionStepsTest)
#include "SessionStepsTest.moc"

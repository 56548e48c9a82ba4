// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"

#include <QFile>
#include <QTemporaryDir>

#include <unistd.h>

using namespace std::chrono_literals;

/// Waits of the tests themselves.
class WaitingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aConditionIsWaitedForInTheEventLoop();
    void aWaitSaysWhatItWaitsForAndLastsOn();
    void theWatchdogOfQtTestIsOff();
};

void WaitingTest::aConditionIsWaitedForInTheEventLoop()
{
    int count = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&count] { ++count; });
    timer.start(0);
    WAIT_FOR(count >= 3);
    QVERIFY(count >= 3);
    WAIT_FOR_EQUAL(qMin(count, 7), 7);
    QVERIFY(count >= 7);
}

void WaitingTest::aWaitSaysWhatItWaitsForAndLastsOn()
{
    const QTemporaryDir folder;
    QFile output(folder.filePath(QStringLiteral("output")));
    QVERIFY(output.open(QIODevice::WriteOnly));
    const int standardOutput = dup(STDOUT_FILENO);
    dup2(output.handle(), STDOUT_FILENO);
    const QByteArray reminder = "Still waiting at x.cpp:5 for 1 == 2: 1 instead of 2\n";
    QFile reader(output.fileName());
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QByteArray said;
    Waiting::until([&] { return (said += reader.readAll()).count('\n') >= 3; },
                   [] { return "1 instead of 2"; }, {"1 == 2", "x.cpp", 5}, 1ms);
    dup2(standardOutput, STDOUT_FILENO);
    close(standardOutput);
    QCOMPARE(said.count(reminder), said.count('\n'));
}

void WaitingTest::theWatchdogOfQtTestIsOff()
{
    QVERIFY2(qgetenv("QTEST_FUNCTION_TIMEOUT") == "2147483647", "Start CTest with one of the presets.");
}

QTEST_GUILESS_MAIN(WaitingTest)
#include "WaitingTest.moc"

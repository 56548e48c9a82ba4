// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"

#include <QFile>
#include <QTemporaryDir>

#include <unistd.h>

using namespace std::chrono_literals;

class WaitingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitingRunsTheEventLoop();
    void aLongWaitPrintsReminders();
    void theWatchdogOfQtTestIsDisabled();
};

void WaitingTest::waitingRunsTheEventLoop()
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

void WaitingTest::aLongWaitPrintsReminders()
{
    const QTemporaryDir folder;
    QFile output(folder.filePath(QStringLiteral("output")));
    QVERIFY(output.open(QIODevice::WriteOnly));
    const int standardOutput = dup(STDOUT_FILENO);
    dup2(output.handle(), STDOUT_FILENO);
    const QByteArray reminder = "Still waiting at x.cpp:5 for 1 == 2: 1 instead of 2\n";
    QFile reader(output.fileName());
    QVERIFY(reader.open(QIODevice::ReadOnly));
    QByteArray printed;
    Waiting::until([&] { return (printed += reader.readAll()).count('\n') >= 3; },
                   [] { return "1 instead of 2"; }, {"1 == 2", "x.cpp", 5}, 1ms);
    dup2(standardOutput, STDOUT_FILENO);
    close(standardOutput);
    QCOMPARE(printed.count(reminder), printed.count('\n'));
}

void WaitingTest::theWatchdogOfQtTestIsDisabled()
{
    QVERIFY2(qgetenv("QTEST_FUNCTION_TIMEOUT") == "2147483647", "Start CTest with one of the presets.");
}

QTEST_GUILESS_MAIN(WaitingTest)
#include "WaitingTest.moc"

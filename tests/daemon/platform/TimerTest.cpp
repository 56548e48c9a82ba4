// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"

#include <ls/Timer.h>

#include <QLoggingCategory>
#include <QtTest>

class TimerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();
    void isSilentByDefault();
    void reportsNameAndTimeWhenEnabled();
    void measuresTheElapsedTime();
    void finishWithoutStartReportsNothing();
    void secondFinishReportsNothing();
    void startedTwiceRunsOnce();
    void timersRunIndependently();

private:
    static void enable() { QLoggingCategory::setFilterRules("Timer.debug=true"); }
};

void TimerTest::cleanup()
{
    QLoggingCategory::setFilterRules(QString());
}

void TimerTest::isSilentByDefault()
{
    const LogRecorder log;

    ls::Timer::start("Console");
    ls::Timer::finish("Console");

    QVERIFY(log.lines().isEmpty());
}

void TimerTest::reportsNameAndTimeWhenEnabled()
{
    enable();
    const LogRecorder log;

    ls::Timer::start("Console");
    ls::Timer::finish("Console");

    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.lines().constFirst().type, QtDebugMsg);
    QCOMPARE(log.lines().constFirst().category, QString("Timer"));
    QVERIFY(QRegularExpression("^\"Console\" took \\d+ ms$").match(log.lines().constFirst().text).hasMatch());
}

void TimerTest::measuresTheElapsedTime()
{
    enable();
    const LogRecorder log;

    ls::Timer::start("Console");
    QThread::msleep(20);
    ls::Timer::finish("Console");

    QVERIFY(log.lines().constFirst().text.section(' ', 2, 2).toInt() >= 20);
}

void TimerTest::finishWithoutStartReportsNothing()
{
    enable();
    const LogRecorder log;

    ls::Timer::finish("never started");

    QVERIFY(log.lines().isEmpty());
}

void TimerTest::secondFinishReportsNothing()
{
    enable();
    const LogRecorder log;

    ls::Timer::start("Console");
    ls::Timer::finish("Console");
    ls::Timer::finish("Console");

    QCOMPARE(log.lines().size(), 1);
}

void TimerTest::startedTwiceRunsOnce()
{
    enable();
    const LogRecorder log;

    ls::Timer::start("Console");
    ls::Timer::start("Console");
    ls::Timer::finish("Console");
    ls::Timer::finish("Console");

    QCOMPARE(log.lines().size(), 1);
}

void TimerTest::timersRunIndependently()
{
    enable();
    const LogRecorder log;

    ls::Timer::start("outer");
    ls::Timer::start("inner");
    ls::Timer::finish("outer");
    ls::Timer::finish("inner");

    QCOMPARE(log.lines().size(), 2);
    QVERIFY(log.lines().at(0).text.startsWith("\"outer\""));
    QVERIFY(log.lines().at(1).text.startsWith("\"inner\""));
}

QTEST_GUILESS_MAIN(TimerTest)
#include "TimerTest.moc"

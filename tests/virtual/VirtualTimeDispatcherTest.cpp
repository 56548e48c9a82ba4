// SPDX-License-Identifier: MIT
#include "tests/virtual/DeviceTest.h"

#include <QSocketNotifier>

#include <unistd.h>

class VirtualTimeDispatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clockAdvancesOnlyOnRequest();
    void timerFiresAtExactlyItsDeadline();
    void timersFireInDeadlineOrder();
    void timersWithEqualDeadlinesFireInStartOrder();
    void timerStartedDuringAnAdvanceFires();
    void singleShotFiresOnce();
    void stoppedTimerDoesNotFire();
    void restartMovesTheDeadline();
    void runningTimersAreCounted();
    void remainingTimeIsVirtual();
    void postedEventsAreHandledBeforeTheClockAdvances();
    void descriptorsAreReadBeforeTheClockAdvances();
    void timersOfDeletedObjectsDoNotFire();

private:
    VirtualTimeDispatcher& clock = VirtualDevice::clock();
};

void VirtualTimeDispatcherTest::clockAdvancesOnlyOnRequest()
{
    const auto before = clock.now();
    QCoreApplication::processEvents();
    QCOMPARE(clock.now().count(), before.count());
    clock.advance(5ms);
    QCOMPARE(clock.now().count(), before.count() + 5);
}

void VirtualTimeDispatcherTest::timerFiresAtExactlyItsDeadline()
{
    QTimer timer;
    const auto start = clock.now();
    QList<qint64> fired;
    connect(&timer, &QTimer::timeout, this, [&] { fired.append((clock.now() - start).count()); });
    timer.start(100ms);
    clock.advance(99ms);
    QCOMPARE(fired, QList<qint64>{});
    clock.advance(1ms);
    QCOMPARE(fired, QList<qint64>{100});
    clock.advance(250ms);
    QCOMPARE(fired, (QList<qint64>{100, 200, 300}));
}

void VirtualTimeDispatcherTest::timersFireInDeadlineOrder()
{
    QString order;
    QTimer::singleShot(30, this, [&order] { order += 'c'; });
    QTimer::singleShot(10, this, [&order] { order += 'a'; });
    QTimer::singleShot(20, this, [&order] { order += 'b'; });
    clock.advance(1s);
    QCOMPARE(order, QString("abc"));
}

void VirtualTimeDispatcherTest::timersWithEqualDeadlinesFireInStartOrder()
{
    QString order;
    QTimer::singleShot(20, this, [&order] { order += 'a'; });
    clock.advance(10ms);
    QTimer::singleShot(10, this, [&order] { order += 'b'; });
    QTimer::singleShot(10, this, [&order] { order += 'c'; });
    clock.advance(10ms);
    QCOMPARE(order, QString("abc"));
}

void VirtualTimeDispatcherTest::timerStartedDuringAnAdvanceFires()
{
    const auto start = clock.now();
    qint64 fired = 0;
    QTimer::singleShot(10, this,
                       [&] { QTimer::singleShot(5, this, [&] { fired = (clock.now() - start).count(); }); });
    clock.advance(15ms);
    QCOMPARE(fired, 15);
}

void VirtualTimeDispatcherTest::singleShotFiresOnce()
{
    QTimer timer;
    timer.setSingleShot(true);
    QSignalSpy spy(&timer, &QTimer::timeout);
    timer.start(10ms);
    clock.advance(1s);
    QCOMPARE(spy.size(), 1);
    QVERIFY(!timer.isActive());
}

void VirtualTimeDispatcherTest::stoppedTimerDoesNotFire()
{
    QTimer timer;
    QSignalSpy spy(&timer, &QTimer::timeout);
    timer.start(10ms);
    clock.advance(9ms);
    timer.stop();
    clock.advance(1s);
    QCOMPARE(spy.size(), 0);
}

void VirtualTimeDispatcherTest::restartMovesTheDeadline()
{
    QTimer timer;
    QSignalSpy spy(&timer, &QTimer::timeout);
    timer.start(10ms);
    clock.advance(9ms);
    timer.start();
    clock.advance(9ms);
    QCOMPARE(spy.size(), 0);
    clock.advance(1ms);
    QCOMPARE(spy.size(), 1);
}

void VirtualTimeDispatcherTest::runningTimersAreCounted()
{
    QTimer timer;
    QTimer single;
    single.setSingleShot(true);
    QCOMPARE(clock.timerCount(), 0);
    timer.start(10);
    single.start(10);
    QCOMPARE(clock.timerCount(), 2);
    clock.advance(10ms);
    QCOMPARE(clock.timerCount(), 1);
    timer.stop();
    QCOMPARE(clock.timerCount(), 0);
}

void VirtualTimeDispatcherTest::remainingTimeIsVirtual()
{
    QTimer timer;
    timer.start(100ms);
    clock.advance(40ms);
    QCOMPARE(timer.remainingTime(), 60);
}

void VirtualTimeDispatcherTest::postedEventsAreHandledBeforeTheClockAdvances()
{
    const auto start = clock.now();
    qint64 handled = -1;
    QMetaObject::invokeMethod(
        this, [&] { handled = (clock.now() - start).count(); }, Qt::QueuedConnection);
    clock.advance(10ms);
    QCOMPARE(handled, 0);
}

void VirtualTimeDispatcherTest::descriptorsAreReadBeforeTheClockAdvances()
{
    int ends[2];
    QVERIFY(::pipe(ends) == 0);
    const auto start = clock.now();
    qint64 handled = -1;
    QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
    connect(&notifier, &QSocketNotifier::activated, this, [&] {
        char byte;
        QCOMPARE(::read(ends[0], &byte, 1), ssize_t(1));
        handled = (clock.now() - start).count();
    });
    QCOMPARE(::write(ends[1], "x", 1), ssize_t(1));
    clock.advance(10ms);
    QCOMPARE(handled, 0);
    ::close(ends[1]);
    notifier.setEnabled(false);
    ::close(ends[0]);
}

void VirtualTimeDispatcherTest::timersOfDeletedObjectsDoNotFire()
{
    auto timer = std::make_unique<QTimer>();
    bool fired = false;
    connect(timer.get(), &QTimer::timeout, this, [&fired] { fired = true; });
    timer->start(10ms);
    timer.reset();
    clock.advance(1s);
    QVERIFY(!fired);
}

VIRTUAL_TIME_TEST_MAIN(VirtualTimeDispatcherTest)
#include "VirtualTimeDispatcherTest.moc"

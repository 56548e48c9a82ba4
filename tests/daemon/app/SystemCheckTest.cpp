// SPDX-License-Identifier: MIT
#include "app/SystemCheck.h"
#include "tests/support/Waiting.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QtTest>

/// The gate opens only once in a process, so the test functions follow its progress.
class SystemCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gateIsInitiallyClosed();
    void gateStaysClosedWhileADependencyIsMissing();
    void gateOpensForAWaiterWhenBothAreReady();
    void gateIsOpenForALateWaiter();

private:
    static bool isOpen();
    static bool isHeld();
    SystemCheck check;
};

bool SystemCheckTest::isOpen()
{
    const QMutexLocker locker(&startupGate().mutex);
    return startupGate().servicesReady;
}

bool SystemCheckTest::isHeld()
{
    const bool locked = startupGate().mutex.tryLock();
    if (locked) {
        startupGate().mutex.unlock();
    }
    return !locked;
}

void SystemCheckTest::gateIsInitiallyClosed()
{
    QVERIFY(!isOpen());
}

void SystemCheckTest::gateStaysClosedWhileADependencyIsMissing()
{
    ServiceWatcher::setReady("state-handler", true);
    check.start(QThread::InheritPriority);
    WAIT_FOR(isHeld()); // the check polls while it holds the mutex
    QVERIFY(check.isRunning());
    QVERIFY(!startupGate().mutex.tryLock(200));
}

void SystemCheckTest::gateOpensForAWaiterWhenBothAreReady()
{
    ServiceWatcher::setReady("speechd", true);
    StartupGate& gate = startupGate();
    QMutexLocker locker(&gate.mutex);
    while (!gate.servicesReady) {
        gate.opened.wait(&gate.mutex);
    }
    locker.unlock();
    QVERIFY(check.wait());
}

void SystemCheckTest::gateIsOpenForALateWaiter()
{
    QVERIFY(isOpen());
    SystemCheck again;
    again.start();
    QVERIFY(again.wait());
    QVERIFY(isOpen());
}

QTEST_GUILESS_MAIN(SystemCheckTest)
#include "SystemCheckTest.moc"

// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

Q_DECLARE_METATYPE(DeviceOptions::StandardInput)

namespace {

constexpr int measuredMs = 2000;
/// A fraction of one processor.
constexpr double maxLoad = 0.02;
/// Per second, while the daemon waits for services.
constexpr double maxWakeUps = 4;

} // namespace

class SystemIdleCostTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void anIdleDaemonUsesLittleProcessorTime_data();
    void anIdleDaemonUsesLittleProcessorTime();
    void aWaitingDaemonUsesLittleProcessorTime();
    void aDaemonWithoutABusUsesLittleProcessorTime();

private:
    double load();
};

double SystemIdleCostTest::load()
{
    const qint64 process = device().daemon().processId();
    const int before = ProcessFigures::processorMs(process);
    QElapsedTimer clock;
    clock.start();
    QTest::qWait(measuredMs);
    const double seconds = double(clock.elapsed()) / 1000;
    return double(ProcessFigures::processorMs(process) - before) / 1000 / seconds;
}

void SystemIdleCostTest::anIdleDaemonUsesLittleProcessorTime_data()
{
    using Input = DeviceOptions::StandardInput;
    QTest::addColumn<Input>("input");
    QTest::newRow("a silent pipe as input") << Input::Pipe;
    QTest::newRow("no device as input") << Input::Null;
    QTest::newRow("closed input") << Input::Closed;
}

void SystemIdleCostTest::anIdleDaemonUsesLittleProcessorTime()
{
    QFETCH(DeviceOptions::StandardInput, input);
    options.standardInput = input;
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    const double share = load();
    QVERIFY2(share < maxLoad, qPrintable(QString::number(share)));
    QVERIFY(nextKeyWorks());
}

void SystemIdleCostTest::aWaitingDaemonUsesLittleProcessorTime()
{
    options.dependenciesReady = false;
    QVERIFY(prepare());
    QVERIFY(device().startDaemon());
    // The start is complete when the thread that checks the services is running.
    WAIT_FOR_EQUAL(ProcessFigures::threads(device().daemon().processId()), 2);
    const qint64 process = device().daemon().processId();
    const int before = ProcessFigures::voluntarySwitches(process);
    QElapsedTimer clock;
    clock.start();
    const double share = load();
    QVERIFY2(share < maxLoad, qPrintable(QString::number(share)));
    const int wakeUps = ProcessFigures::voluntarySwitches(process) - before;
    QVERIFY2(wakeUps * 1000 <= maxWakeUps * double(clock.elapsed()), qPrintable(QString::number(wakeUps)));
    QVERIFY(device().isRunning());
}

void SystemIdleCostTest::aDaemonWithoutABusUsesLittleProcessorTime()
{
    options.bus = false;
    QVERIFY(launch());
    const double share = load();
    QVERIFY2(share < maxLoad, qPrintable(QString::number(share)));
    QVERIFY(device().isRunning());
}

QTEST_GUILESS_MAIN(SystemIdleCostTest)
#include "SystemIdleCostTest.moc"

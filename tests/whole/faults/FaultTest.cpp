// SPDX-License-Identifier: MIT
#include "tests/whole/faults/FaultTest.h"

#include "tests/support/Waiting.h"

#include <algorithm>

namespace {

constexpr int roundCount = 3;
constexpr int pressesForGrowth = 1000; // in each round

/// A daemon that waits for another process does so for seconds. A busy machine may cause smaller delays.
constexpr double maxSlowdown = 25;
constexpr double minUsualMs = 4;

#ifdef __SANITIZE_ADDRESS__
/// The sanitizer delays the reuse of freed memory.
constexpr qint64 sanitizerSlackKiB = 32 * 1024;
#else
constexpr qint64 sanitizerSlackKiB = 0;
#endif

const QString registered = QStringLiteral("Successfully registered on DBus: \"com.vantre.KeyboardHandler\"");

double median(QVector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

} // namespace

/// The figures before, during and after the fault in one round.
struct FaultTest::Figures
{
    double beforeMs = 0;
    double duringMs = 0;
    double afterMs = 0;
    qint64 memoryKiB = 0;
    int descriptors = 0;
};

void FaultTest::initTestCase()
{
    // The sanitizer's quarantine of freed memory would hide a leak.
    qputenv("ASAN_OPTIONS", "quarantine_size_mb=1:" + qgetenv("ASAN_OPTIONS"));
}

void FaultTest::init()
{
    dice = Dice(FaultSeeds::current());
}

void FaultTest::verifyResilience(const Fault& fault)
{
    QVERIFY(prepare());
    fault.precede();
    if (QTest::currentTestFailed()) {
        return;
    }
    QVERIFY2(launch(), "the daemon does not become ready");
    verifyRounds(fault);
    if (!QTest::currentTestFailed()) {
        verifyLog(fault.log);
    }
}

void FaultTest::tapAny(const QStringList& keys, int count)
{
    for (int i = 0; i < count; ++i) {
        tap(dice.pick(keys), dice.below(Panel::keyboardCount));
    }
}

QString FaultTest::receiverOfMenu(int keyboard)
{
    QString receiver;
    QObject context;
    connect(&device(), &SimulatedDevice::announced, &context, [&](const QVariantMap& notification) {
        if (notification.value(ls::firstKeyKey) == ls::KeyId::Menu &&
            notification.value(ls::actionIdKey) == ls::KeyboardActionId::SingleKey) {
            receiver = notification.value(ls::receiverIdKey).toString();
        }
    });
    tap(ls::KeyId::Menu, keyboard);
    WAIT_FOR(!receiver.isEmpty() || !device().isRunning());
    return receiver;
}

bool FaultTest::awaitReceiver(const QString& receiver)
{
    WAIT_FOR(receiverOfMenu() == receiver || !device().isRunning());
    return device().isRunning();
}

bool FaultTest::awaitLoneKey()
{
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    tap(ls::KeyId::Up);
    WAIT_FOR(!announced.isEmpty() || !device().isRunning());
    return !announced.isEmpty();
}

double FaultTest::latency(const QVector<int>& keyboards, int presses)
{
    QVector<double> times;
    for (int i = 0; i < presses; ++i) {
        QElapsedTimer timer;
        timer.start();
        if (receiverOfMenu(keyboards.at(i % keyboards.size())).isEmpty()) {
            return -1;
        }
        times << double(timer.nsecsElapsed()) / 1e6;
    }
    return median(times);
}

void FaultTest::verifyLatency(double usualMs, double disturbedMs)
{
    QVERIFY2(usualMs >= 0 && disturbedMs >= 0, "keys do not work");
    QVERIFY2(disturbedMs <= maxSlowdown * std::max(usualMs, minUsualMs),
             qPrintable(QStringLiteral("a key takes %1 ms instead of %2 ms").arg(disturbedMs).arg(usualMs)));
}

void FaultTest::verifyNoGrowth(qint64 memoryBeforeKiB, int descriptorsBefore, qint64 slackKiB)
{
    QVERIFY2(memoryBeforeKiB > 0 && descriptorsBefore > 0,
             "the daemon's memory and descriptors cannot be read");
    const int moreDescriptors = descriptorsAbove(descriptorsBefore);
    QVERIFY2(moreDescriptors <= 0, qPrintable(QStringLiteral("%1 descriptors more").arg(moreDescriptors)));
    const qint64 moreKiB = memoryKiB() - memoryBeforeKiB;
    QVERIFY2(moreKiB <= slackKiB + sanitizerSlackKiB, qPrintable(QStringLiteral("%1 KiB more").arg(moreKiB)));
}

void FaultTest::verifyLog(const QStringList& patterns) const
{
    for (const QString& pattern : patterns) {
        const QRegularExpression line(QRegularExpression::anchoredPattern(pattern));
        WAIT_FOR(!log().filter(line).isEmpty());
    }
    const QStringList all = patterns + QStringList(QRegularExpression::escape(registered));
    const QRegularExpression other(QStringLiteral("^(?!(?:%1)$)").arg(all.join('|')));
    QCOMPARE(log().filter(other).join('\n'), QString());
}

void FaultTest::verifyRound(const Fault& fault, Figures& figures)
{
    fault.begin();
    if (!QTest::currentTestFailed() && !fault.freeKeyboards.isEmpty()) {
        figures.duringMs = latency(fault.freeKeyboards);
        verifyLatency(figures.beforeMs, figures.duringMs);
    }
    if (!QTest::currentTestFailed()) {
        fault.end();
    }
    if (QTest::currentTestFailed()) {
        return;
    }
    figures.afterMs = latency({0, 1}, pressesForGrowth);
    verifyLatency(figures.beforeMs, figures.afterMs);
    QCOMPARE(faults(), QString());
    figures.memoryKiB = memoryKiB();
    figures.descriptors = descriptors();
}

void FaultTest::verifyRounds(const Fault& fault)
{
    Figures last;
    last.beforeMs = latency();
    Figures first;
    for (int i = 0; i < roundCount && !QTest::currentTestFailed(); ++i) {
        verifyRound(fault, last);
        first = i == 0 ? last : first;
        if (!QTest::currentTestFailed()) {
            verifyNoGrowth(first.memoryKiB, first.descriptors, fault.slackKiB);
        }
    }
    qInfo("seed %llu: a key takes %.2f ms before, %.2f ms during, %.2f ms after the fault; "
          "%lld KiB and %d descriptors more",
          FaultSeeds::current(), last.beforeMs, last.duringMs, last.afterMs, last.memoryKiB - first.memoryKiB,
          last.descriptors - first.descriptors);
}

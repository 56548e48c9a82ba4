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

/// The figures of one start and end of a fault.
struct FaultTest::Round
{
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

bool FaultTest::await(const std::function<bool()>& condition)
{
    WAIT_FOR(condition());
    return true;
}

QString FaultTest::receiverOfMenu(int inputDevice)
{
    QString receiver;
    QObject context;
    connect(&device(), &SimulatedDevice::announced, &context, [&](const QVariantMap& notification) {
        if (notification.value(ls::firstKeyKey) == ls::KeyId::Menu &&
            notification.value(ls::actionIdKey) == ls::KeyboardActionId::SingleKey) {
            receiver = notification.value(ls::receiverIdKey).toString();
        }
    });
    tap(ls::KeyId::Menu, inputDevice);
    WAIT_FOR(!receiver.isEmpty() || !device().isRunning());
    return receiver;
}

bool FaultTest::awaitReceiver(const QString& receiver)
{
    return await([&] { return receiverOfMenu() == receiver; });
}

bool FaultTest::awaitLoneKey()
{
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    tap(ls::KeyId::Up);
    WAIT_FOR(!announced.isEmpty() || !device().isRunning());
    return !announced.isEmpty();
}

std::optional<double> FaultTest::latency(const QVector<int>& inputDevices, int presses)
{
    QVector<double> times;
    for (int i = 0; i < presses; ++i) {
        QElapsedTimer timer;
        timer.start();
        if (receiverOfMenu(inputDevices.at(i % inputDevices.size())).isEmpty()) {
            return std::nullopt;
        }
        times << double(timer.nsecsElapsed()) / 1e6;
    }
    return median(times);
}

QString FaultTest::slowness(double usual, double disturbed)
{
    const bool isUnmoved = disturbed <= maxSlowdown * std::max(usual, minUsualMs);
    return isUnmoved ? QString()
                     : QStringLiteral("a key takes %1 ms instead of %2 ms").arg(disturbed).arg(usual);
}

QString FaultTest::growth(qint64 memoryBeforeKiB, int descriptorsBefore, qint64 slackKiB)
{
    if (memoryBeforeKiB <= 0 || descriptorsBefore <= 0) {
        return QStringLiteral("the daemon cannot be looked into");
    }
    if (const int more = descriptorsAbove(descriptorsBefore); more > 0) {
        return QStringLiteral("%1 descriptors more").arg(more);
    }
    const qint64 more = memoryKiB() - memoryBeforeKiB;
    return more <= slackKiB + sanitizerSlackKiB ? QString() : QStringLiteral("%1 KiB more").arg(more);
}

QString FaultTest::logFault(const QStringList& patterns) const
{
    QStringList rest = log();
    rest.removeAll(registered);
    for (const QString& pattern : patterns) {
        const QRegularExpression expression(QRegularExpression::anchoredPattern(pattern));
        const int before = rest.size();
        rest.erase(std::remove_if(rest.begin(), rest.end(),
                                  [&](const QString& line) { return expression.match(line).hasMatch(); }),
                   rest.end());
        if (rest.size() == before) {
            return QStringLiteral("not in the log: ") + pattern;
        }
    }
    return rest.isEmpty() ? QString() : QStringLiteral("unexpected in the log: ") + rest.first();
}

QString FaultTest::round(Fault& fault, Round& figures)
{
    QString broken = fault.begin(*this);
    if (broken.isEmpty() && !fault.freeDevices().isEmpty()) {
        figures.duringMs = latency(fault.freeDevices()).value_or(-1);
        broken = figures.duringMs < 0 ? QStringLiteral("keys do not work during the fault") : QString();
    }
    if (broken.isEmpty()) {
        broken = fault.end(*this);
    }
    if (broken.isEmpty()) {
        figures.afterMs = latency({0, 1}, pressesForGrowth).value_or(-1);
        broken = faults();
    }
    figures.memoryKiB = memoryKiB();
    figures.descriptors = descriptors();
    return broken;
}

QString FaultTest::rounds(Fault& fault)
{
    const double usual = latency().value_or(-1);
    Round first;
    Round last;
    QString broken = usual < 0 ? QStringLiteral("keys do not work before the fault") : QString();
    for (int i = 0; i < roundCount && broken.isEmpty(); ++i) {
        broken = round(fault, last);
        first = i == 0 ? last : first;
        if (broken.isEmpty()) {
            broken = slowness(usual, std::max(last.duringMs, last.afterMs));
        }
        if (broken.isEmpty()) {
            broken = growth(first.memoryKiB, first.descriptors, fault.slackKiB());
        }
    }
    qInfo("seed %llu: a key takes %.2f ms before, %.2f ms during, %.2f ms after the fault; "
          "%lld KiB and %d descriptors more",
          seed(), usual, last.duringMs, last.afterMs, last.memoryKiB - first.memoryKiB,
          last.descriptors - first.descriptors);
    return broken;
}

QString FaultTest::damageFrom(Fault& fault)
{
    fault.configure(options);
    if (!prepare()) {
        return QStringLiteral("the device cannot be created");
    }
    QString broken = fault.precede(*this);
    if (broken.isEmpty() && !launch()) {
        broken = QStringLiteral("the daemon does not become ready");
    }
    if (broken.isEmpty()) {
        broken = rounds(fault);
    }
    if (broken.isEmpty()) {
        await([&] { return logFault(fault.log()).isEmpty(); });
        broken = logFault(fault.log());
    }
    return broken;
}

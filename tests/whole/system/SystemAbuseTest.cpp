// SPDX-License-Identifier: MIT
#include "tests/whole/system/SystemAbuseTest.h"

#include "tests/support/ProcessFigures.h"

namespace {

constexpr int warmUps = 2;
constexpr int repetitions = 4;
/// After this number of commands, the daemon has had time to close unused descriptors.
constexpr int laterCommands = 1000;
#ifdef __SANITIZE_ADDRESS__
/// The sanitizer delays the reuse of freed memory.
constexpr qint64 sanitizerSlackKiB = 512 * 1024;
#else
constexpr qint64 sanitizerSlackKiB = 0;
#endif

} // namespace

QString SystemAbuseTest::damageOf(const std::function<void()>& attack, qint64 slackKiB)
{
    const QString early = faultsAfter(attack, warmUps);
    if (!early.isEmpty()) {
        return early;
    }
    const qint64 memory = memoryKiB();
    const int files = descriptors();
    if (memory <= 0 || files <= 0) {
        return QStringLiteral("the daemon cannot be looked into");
    }
    const QString late = faultsAfter(attack, repetitions);
    if (!late.isEmpty()) {
        return late;
    }
    if (const int more = descriptorsAbove(files); more > 0) {
        return QStringLiteral("%1 descriptors more").arg(more);
    }
    return growthFault(memory, slackKiB);
}

QString SystemAbuseTest::faults()
{
    if (!device().isRunning()) {
        return QStringLiteral("the daemon is gone");
    }
    if (!nextKeyWorks()) {
        return QStringLiteral("keys do not work");
    }
    const QVariantMap response = command(ls::KeyboardHandlerCmdId::GetLastKey);
    const bool answered = response.value(ls::keyKey) == ls::KeyId::meta.value(ls::KeyId::Menu);
    return answered ? QString() : QStringLiteral("commands do not work");
}

qint64 SystemAbuseTest::memoryKiB()
{
    return ProcessFigures::memoryKib(device().daemon().processId(), QStringLiteral("Anonymous"));
}

QString SystemAbuseTest::growthFault(qint64 memoryBeforeKiB, qint64 allowedKiB)
{
    const qint64 growth = memoryKiB() - memoryBeforeKiB;
    return growth <= allowedKiB + sanitizerSlackKiB ? QString() : QStringLiteral("%1 KiB more").arg(growth);
}

bool SystemAbuseTest::idles()
{
    constexpr int measuredMs = 500;
    constexpr int maxMs = 50; // a loop would take all
    const int before = processorMs();
    QTest::qWait(measuredMs);
    const int after = processorMs();
    return before != -1 && after != -1 && after - before <= maxMs;
}

QString SystemAbuseTest::faultsAfter(const std::function<void()>& attack, int times)
{
    for (int i = 0; i < times; ++i) {
        attack();
        if (QTest::currentTestFailed()) {
            return QStringLiteral("the attack did not finish");
        }
    }
    return faults();
}

int SystemAbuseTest::processorMs()
{
    return ProcessFigures::processorMs(device().daemon().processId());
}

int SystemAbuseTest::descriptorsAbove(int allowed)
{
    for (int i = 0; i < laterCommands && descriptors() > allowed; ++i) {
        command(ls::KeyboardHandlerCmdId::GetLastKey);
    }
    return descriptors() - allowed;
}

int SystemAbuseTest::descriptors()
{
    return ProcessFigures::descriptors(device().daemon().processId());
}

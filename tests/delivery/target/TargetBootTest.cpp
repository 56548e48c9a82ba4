// SPDX-License-Identifier: MIT
#include "tests/delivery/target/TargetTest.h"
#include "tests/support/Waiting.h"

namespace {

/// The time from the kernel's start until the unit became active.
qint64 activeSinceMs(const QString& unit)
{
    return Unit::property(unit, QStringLiteral("ActiveEnterTimestampMonotonic")).toLongLong() / 1000;
}

bool isInstructed(const char* argument)
{
    QFile line(QStringLiteral("/proc/cmdline"));
    return line.open(QIODevice::ReadOnly) && line.readAll().contains(argument);
}

} // namespace

/// Tests unusual boots. Each function runs alone, on a system booted with the kernel arguments in
/// CMakeLists.txt.
class TargetBootTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void thePanelStartsLate();
    void theStateHandlerStartsLate();
    void theRootFileSystemIsReadOnly();

private:
    void verifyServing();
};

void TargetBootTest::verifyServing()
{
    WAIT_FOR(Unit::isActive(Unit::daemon));
    QVERIFY(nextKeyWorks(0));
    QVERIFY(nextKeyWorks(1));
}

void TargetBootTest::thePanelStartsLate()
{
    constexpr qint64 lateMs = 5000;
    QVERIFY(isInstructed("delay.panel=5"));
    verifyServing();
    QVERIFY(activeSinceMs(Unit::panel) > activeSinceMs(Unit::stateHandler) + lateMs / 2);
    QVERIFY(activeSinceMs(Unit::daemon) > activeSinceMs(Unit::panel));
}

void TargetBootTest::theStateHandlerStartsLate()
{
    constexpr qint64 lateMs = 10'000;
    QVERIFY(isInstructed("delay.state-handler=10"));
    verifyServing();
    QVERIFY(activeSinceMs(Unit::stateHandler) > lateMs);
    QVERIFY(activeSinceMs(Unit::daemon) > activeSinceMs(Unit::stateHandler));
    QCOMPARE(playSteps(QStringLiteral("tap Up\n"
                                      "expect +0 speak EmbosserCore 24\n" // so the state is known
                                      "wait 1500\n"
                                      "expect +0 announce SingleKey UserMenu KeyboardHandler Up\n")),
             QStringList());
}

void TargetBootTest::theRootFileSystemIsReadOnly()
{
    QVERIFY(!QFile(QStringLiteral("/var/lib/keyboard-handler/written")).open(QIODevice::WriteOnly));
    verifyServing();
    QCOMPARE(
        playSteps(QStringLiteral("wait 1500\n"
                                 "tap Help\n"
                                 "expect +0 speak EmbosserCore 20\n"
                                 "wait 100\n"
                                 "tap Feed\n"
                                 "expect +0 announce PaperStatus PrintManager KeyboardHandler Help Feed\n"
                                 "expect +0 speak EmbosserCore 19\n"
                                 "wait 1600\n")),
        QStringList());
}

QTEST_GUILESS_MAIN(TargetBootTest)
#include "TargetBootTest.moc"

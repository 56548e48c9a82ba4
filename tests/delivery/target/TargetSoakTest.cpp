// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScriptText.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/support/ProcessFigures.h"

namespace {

using namespace std::chrono_literals;

constexpr int rounds = 96;
constexpr std::chrono::milliseconds pause = 14min;
constexpr int maxGrowthKib = 64;

const QString demonstration = QStringLiteral("/usr/lib/keyboard-handler-tests/scripts/demonstration.keys");

} // namespace

/// Simulates a day of panel use: every kind of key action each quarter of an hour.
class TargetSoakTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void aDayOfUseLeaksNothing();
};

void TargetSoakTest::aDayOfUseLeaksNothing()
{
    QVERIFY(TargetDevice::giveDaemonConsole());
    KeyScript script = loadKeyScript(demonstration).script;
    QVERIFY(restartDaemon({}, script.initialState, script.model));
    QCOMPARE(play(script), QStringList());
    // From the second round on, the sender of the first announcement is that of the previous round's last
    // command.
    for (Observation& expectation : script.expectations) {
        expectation.text.replace(QStringLiteral("announce SingleKey UserMenu - Up"),
                                 QStringLiteral("announce SingleKey UserMenu KeyboardHandler Up"));
    }
    const int process = Unit::mainProcess(Unit::daemon);
    const int files = ProcessFigures::descriptors(process);
    const int memory = ProcessFigures::memoryKib(process, QStringLiteral("Pss_Anon"));
    for (int round = 1; round < rounds; ++round) {
        QThread::msleep(static_cast<unsigned long>(pause.count())); // no events to process
        device().setState(ls::StateId::Startup);
        const QStringList difference = play(script);
        QVERIFY2(difference.isEmpty(),
                 qPrintable(QStringLiteral("round %1:\n").arg(round) + difference.join('\n')));
    }
    const int growth = ProcessFigures::memoryKib(process, QStringLiteral("Pss_Anon")) - memory;
    qInfo("anonymous memory: %d KiB, grown by %d KiB; processor time of the day: %lld ms", memory, growth,
          static_cast<long long>(Unit::processorTimeUs(Unit::daemon) / 1000));
    QVERIFY(growth <= maxGrowthKib);
    QCOMPARE(ProcessFigures::descriptors(process), files);
    QCOMPARE(Unit::mainProcess(Unit::daemon), process);
}

QTEST_GUILESS_MAIN(TargetSoakTest)
#include "TargetSoakTest.moc"

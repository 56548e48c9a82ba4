// SPDX-License-Identifier: MIT
#include "tests/faults/FaultTest.h"
#include "tests/system/BusClient.h"

#include <ls/BusNames.h>

#include <QDBusConnectionInterface>

#include <signal.h>

namespace {

/// What the daemon sends meanwhile waits in the daemon.
class StoppedBus : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        test.device().setState(ls::StateId::Error);
        if (!test.awaitReceiver(ls::ServiceId::ErrorHandler)) {
            return QStringLiteral("the state stays");
        }
        ::kill(pid_t(test.device().bus().processId()), SIGSTOP);
        m_announced = std::make_unique<QSignalSpy>(&test.device(), &SimulatedDevice::announced);
        m_keys = 1 + dice.below(1000);
        for (int i = 0; i < m_keys; ++i) {
            test.tap(dice.pick({ls::KeyId::Up, ls::KeyId::Ok, ls::KeyId::Back}));
        }
        return FaultTest::await([&] { return test.device().pendingInput() == 0; })
                   ? QString()
                   : QStringLiteral("keys are not read");
    }
    QString end(FaultTest& test) override
    {
        ::kill(pid_t(test.device().bus().processId()), SIGCONT);
        if (!FaultTest::await([this] { return m_announced->size() == m_keys; })) {
            return QStringLiteral("%1 of %2 keys").arg(m_announced->size()).arg(m_keys);
        }
        test.device().setState(ls::StateId::Idle);
        return test.awaitReceiver(ls::ServiceId::UserMenu) ? QString() : QStringLiteral("the state stays");
    }
    bool leavesAnnouncements() const override { return false; }

private:
    std::unique_ptr<QSignalSpy> m_announced;
    int m_keys = 0;
};

} // namespace

class BusFaultsTest : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void theBusIsKilledAndRestarted();
    void theBusIsStopped();

private:
    /// Presses `count` keys without a bus; false when one is not recognised.
    bool worksOff(int count);
};

bool BusFaultsTest::worksOff(int count)
{
    static const QString announcement = QStringLiteral("Console: NotifcationId: \"KeyboardChange\"");
    const int before = log().count(announcement);
    for (int i = 0; i < count; ++i) {
        tap(ls::KeyId::Menu, i % Panel::deviceCount);
    }
    return await([&] { return log().count(announcement) == before + count; });
}

/// The daemon lives on and knows the keys, but nobody hears of them until it is started again.
void BusFaultsTest::theBusIsKilledAndRestarted()
{
    Dice dice(seed());
    options.loggingRules = QStringLiteral("Console.debug=true");
    QVERIFY(launch());
    const auto usual = latency();
    QVERIFY(usual);
    QSignalSpy ended(&device(), &SimulatedDevice::busEnded);
    ::kill(pid_t(device().bus().processId()), SIGKILL);
    QTRY_COMPARE(ended.size(), 1);
    QVERIFY(worksOff(1 + dice.below(200)));
    const qint64 memory = memoryKiB();
    const int files = descriptors();
    QVERIFY(worksOff(500 + dice.below(500)));
    QVERIFY(idles());
    QCOMPARE(growth(memory, files), QString());
    QCOMPARE(oddLines({"Console:.*"}), QString());

    QVERIFY(device().restartBus());
    QVERIFY(worksOff(1 + dice.below(200)));
    BusClient client(device().bus().address());
    QVERIFY(
        !client.connection().interface()->isServiceRegistered(ls::busName(ls::ServiceId::KeyboardHandler)));
    device().stopDaemon();
    QVERIFY(launch());
    QCOMPARE(faults(), QString());
    const auto afterwards = latency();
    QVERIFY(afterwards);
    QCOMPARE(slowness(*usual, *afterwards), QString());
    qInfo("seed %llu: a key takes %.2f ms before, %.2f ms afterwards", seed(), *usual, *afterwards);
}

void BusFaultsTest::theBusIsStopped()
{
    StoppedBus fault(seed());
    QCOMPARE(damageBy(fault), QString());
}

QTEST_GUILESS_MAIN(BusFaultsTest)
#include "BusFaultsTest.moc"

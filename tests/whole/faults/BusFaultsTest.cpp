// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/faults/FaultTest.h"
#include "tests/whole/faults/Signals.h"
#include "tests/whole/system/BusClient.h"

#include <ls/BusNames.h>

#include <QDBusConnectionInterface>
#include <QDBusUnixFileDescriptor>

#include <algorithm>

#include <sys/resource.h>
#include <unistd.h>

namespace {

const QString lostLine = QStringLiteral("The connection to the system bus is lost\\.");
const QString announcement = QStringLiteral("Console: NotifcationId: \"KeyboardChange\"");

/// The daemon queues its messages during this fault.
class StoppedBus : public Fault
{
public:
    using Fault::Fault;

    QString begin(FaultTest& test) override
    {
        test.device().setState(ls::StateId::Error);
        if (!test.awaitReceiver(ls::ServiceId::ErrorHandler)) {
            return QStringLiteral("the state does not change");
        }
        if (!signalTo(test.device().bus().processId(), SIGSTOP)) {
            return QStringLiteral("the bus is gone");
        }
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
        signalTo(test.device().bus().processId(), SIGCONT);
        if (!FaultTest::await([this] { return m_announced->size() == m_keys; })) {
            return QStringLiteral("%1 of %2 keys").arg(m_announced->size()).arg(m_keys);
        }
        test.device().setState(ls::StateId::Idle);
        return test.awaitReceiver(ls::ServiceId::UserMenu) ? QString()
                                                           : QStringLiteral("the state does not change");
    }
    QVector<int> freeDevices() const override { return {}; }
    qint64 slackKiB() const override { return queueSlackKiB; }

private:
    std::unique_ptr<QSignalSpy> m_announced;
    int m_keys = 0;
};

/// The limit of the installed unit, or what this machine allows.
rlim_t descriptorLimit()
{
    QFile unit(QStringLiteral(KEYBOARD_HANDLER_UNIT));
    const QString text = unit.open(QIODevice::ReadOnly) ? QString::fromUtf8(unit.readAll()) : QString();
    rlimit own{};
    ::getrlimit(RLIMIT_NOFILE, &own);
    return std::min<rlim_t>(text.section(QStringLiteral("\nLimitNOFILE="), 1).section('\n', 0, 0).toUInt(),
                            own.rlim_max);
}

QVariantMap commandOf(const QString& name)
{
    return {{ls::commandIdKey, name}, {ls::senderIdKey, ls::ServiceId::WwwApi}};
}

/// More calls from several clients than the bus library would queue, and keys, while the daemon processes
/// long commands.
class Flood : public Fault
{
public:
    explicit Flood(quint64 seed) : Fault(seed)
    {
        QStringList keys;
        for (int i = 200'000 + dice.below(200'000); i > 0; --i) {
            keys << ls::KeyId::Ten;
        }
        m_longCommand.insert(ls::keysListKey, keys);
    }

    void configure(DeviceOptions& options) override
    {
        options.daemon = QStringLiteral("/bin/sh");
        options.daemonArguments = QStringList{
            QStringLiteral("-c"), QStringLiteral("ulimit -n %1; exec \"$0\"").arg(descriptorLimit()),
            QStringLiteral(KEYBOARD_HANDLER_DAEMON)};
    }
    QString begin(FaultTest& test) override
    {
        const QString address = test.device().bus().address();
        BusClient busy(address);
        std::vector<std::unique_ptr<BusClient>> clients;
        for (int i = 0; i < clientCount; ++i) {
            clients.push_back(std::make_unique<BusClient>(address));
        }
        QSignalSpy announced(&test.device(), &SimulatedDevice::announced);
        QList<QDBusPendingCall> calls = busy.open(m_longCommand, longCommands);
        for (const auto& client : clients) {
            calls << client->open(command(), callsOfAClient());
            test.tap(ls::KeyId::Menu, dice.below(Panel::keyboardCount));
        }
        const auto lost = std::count_if(calls.begin(), calls.end(), [](QDBusPendingCall& call) {
            call.waitForFinished();
            // The bus rejects calls that it cannot deliver in time.
            return call.isError() && call.error().type() != QDBusError::LimitsExceeded;
        });
        if (lost > 0) {
            return QStringLiteral("%1 of %2 calls are lost").arg(lost).arg(calls.size());
        }
        return FaultTest::await([&] { return announced.size() == clientCount; })
                   ? QString()
                   : QStringLiteral("%1 of %2 keys").arg(announced.size()).arg(clientCount);
    }
    /// Keys wait until the commands are processed.
    QVector<int> freeDevices() const override { return {}; }

    /// The heap keeps the memory of the largest burst.
    qint64 slackKiB() const override { return 128 * 1024; }

protected:
    virtual QVariantMap command() = 0;
    virtual int callsOfAClient() const = 0;

private:
    static constexpr int clientCount = 3;
    static constexpr int longCommands = 6; // until the whole flood has arrived

    QVariantMap m_longCommand = commandOf(ls::KeyboardHandlerCmdId::SimulateShortcut);
};

class FloodOfDescriptors : public Flood
{
public:
    using Flood::Flood;

protected:
    QVariantMap command() override
    {
        constexpr int maxDescriptors = 16; // the limit of the bus
        QVariantMap command = commandOf(ls::KeyboardHandlerCmdId::GetLongKeysTimeout);
        for (int i = 0; i < maxDescriptors; ++i) {
            command.insert(QString::number(i),
                           QVariant::fromValue(QDBusUnixFileDescriptor(dice.below(STDERR_FILENO + 1))));
        }
        return command;
    }
    int callsOfAClient() const override
    {
        return 120;
    } // the bus rejects clients with more than 128 pending calls
};

class FloodOfMegabytes : public Flood
{
public:
    using Flood::Flood;

protected:
    QVariantMap command() override
    {
        constexpr int megabyte = 1024 * 1024;
        QVariantMap command = commandOf(ls::KeyboardHandlerCmdId::GetLongKeysTimeout);
        command.insert(QStringLiteral("odd"), QByteArray((24 + dice.below(7)) * megabyte, 'x'));
        return command;
    }
    int callsOfAClient() const override { return 1; }
};

} // namespace

class BusFaultsTest : public FaultTest
{
    Q_OBJECT

private Q_SLOTS:
    void theBusIsKilledAndRestarted();
    void theBusIsStopped();
    void servicesSendDescriptors();
    void servicesSendMegabytes();

private:
    /// Presses `count` keys without a bus; false if one is not recognised.
    bool handleKeysWithoutBus(int count);
};

bool BusFaultsTest::handleKeysWithoutBus(int count)
{
    const int before = log().count(announcement);
    for (int i = 0; i < count; ++i) {
        tap(ls::KeyId::Menu, i % Panel::keyboardCount);
    }
    return await([&] { return log().count(announcement) == before + count; });
}

/// The daemon keeps running and recognises keys, but cannot announce them until it is restarted.
void BusFaultsTest::theBusIsKilledAndRestarted()
{
    Dice dice(seed());
    options.loggingRules = QStringLiteral("Console.debug=true");
    QVERIFY(launch());
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    const auto usual = latency();
    QVERIFY(usual);
    // The log may lag behind the announcements, and late lines would be counted with the next keys.
    WAIT_FOR_EQUAL(log().count(announcement), announced.size());
    QSignalSpy ended(&device(), &SimulatedDevice::busEnded);
    QVERIFY(signalTo(device().bus().processId(), SIGKILL));
    WAIT_FOR_EQUAL(ended.size(), 1);
    QVERIFY(handleKeysWithoutBus(1000));
    const qint64 memory = memoryKiB();
    const int files = descriptors();
    QVERIFY(handleKeysWithoutBus(4000 + dice.below(1000)));
    QVERIFY(idles());
    QCOMPARE(growth(memory, files, Fault::queueSlackKiB), QString());
    QCOMPARE(logFault({"Console:.*", lostLine}), QString());

    QVERIFY(device().restartBus());
    QVERIFY(handleKeysWithoutBus(1 + dice.below(200)));
    BusClient client(device().bus().address());
    QVERIFY(
        !client.connection().interface()->isServiceRegistered(ls::busName(ls::ServiceId::KeyboardHandler)));
    device().stopDaemon();
    QVERIFY(launch());
    QCOMPARE(faults(), QString());
    const auto afterwards = latency();
    QVERIFY(afterwards);
    QCOMPARE(slowness(*usual, *afterwards), QString());
    QCOMPARE(logFault({"Console:.*", lostLine}), QString());
    qInfo("seed %llu: a key takes %.2f ms before, %.2f ms afterwards", seed(), *usual, *afterwards);
}

void BusFaultsTest::theBusIsStopped()
{
    StoppedBus fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

void BusFaultsTest::servicesSendDescriptors()
{
    FloodOfDescriptors fault(seed());
    QVERIFY(descriptorLimit() > 0);
    QCOMPARE(damageFrom(fault), QString());
}

void BusFaultsTest::servicesSendMegabytes()
{
    FloodOfMegabytes fault(seed());
    QCOMPARE(damageFrom(fault), QString());
}

QTEST_GUILESS_MAIN(BusFaultsTest)
#include "BusFaultsTest.moc"

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
    /// Presses `count` keys and waits until they are recognised, which the log shows.
    void handleKeysWithoutBus(int count);
    /// The fault is more calls from several clients than the bus library would queue, and keys, while the
    /// daemon processes long commands.
    void verifyFlood(const std::function<QVariantMap()>& makeCommand, int callsOfAClient);
};

void BusFaultsTest::handleKeysWithoutBus(int count)
{
    const int before = log().count(announcement);
    for (int i = 0; i < count; ++i) {
        tap(ls::KeyId::Menu, i % Panel::keyboardCount);
    }
    WAIT_FOR_EQUAL(log().count(announcement), before + count);
}

/// The daemon keeps running and recognises keys, but cannot announce them until it is restarted.
void BusFaultsTest::theBusIsKilledAndRestarted()
{
    options.loggingRules = QStringLiteral("Console.debug=true");
    QVERIFY(launch());
    QSignalSpy announced(&device(), &SimulatedDevice::announced);
    const double usual = latency();
    // The log may lag behind the announcements, and late lines would be counted with the next keys.
    WAIT_FOR_EQUAL(log().count(announcement), announced.size());
    QSignalSpy ended(&device(), &SimulatedDevice::busEnded);
    QVERIFY(signalTo(device().bus().processId(), SIGKILL));
    WAIT_FOR_EQUAL(ended.size(), 1);
    handleKeysWithoutBus(1000);
    const qint64 memory = memoryKiB();
    const int files = descriptors();
    handleKeysWithoutBus(4000 + dice.below(1000));
    QVERIFY(idles());
    verifyNoGrowth(memory, files, Fault::queueSlackKiB);
    verifyLog({"Console:.*", lostLine});

    QVERIFY(device().restartBus());
    handleKeysWithoutBus(1 + dice.below(200));
    BusClient client(device().bus().address());
    QVERIFY(
        !client.connection().interface()->isServiceRegistered(ls::busName(ls::ServiceId::KeyboardHandler)));
    device().stopDaemon();
    QVERIFY(launch());
    QCOMPARE(faults(), QString());
    const double afterwards = latency();
    verifyLatency(usual, afterwards);
    verifyLog({"Console:.*", lostLine});
    qInfo("seed %llu: a key takes %.2f ms before, %.2f ms afterwards", FaultSeeds::current(), usual,
          afterwards);
}

/// The daemon queues its messages during this fault.
void BusFaultsTest::theBusIsStopped()
{
    std::unique_ptr<QSignalSpy> announced;
    int keys = 0;
    Fault fault;
    fault.begin = [&] {
        device().setState(ls::StateId::Error);
        QVERIFY(awaitReceiver(ls::ServiceId::ErrorHandler));
        QVERIFY(signalTo(device().bus().processId(), SIGSTOP));
        announced = std::make_unique<QSignalSpy>(&device(), &SimulatedDevice::announced);
        keys = 1 + dice.below(1000);
        tapAny({ls::KeyId::Up, ls::KeyId::Ok, ls::KeyId::Back}, keys);
        WAIT_FOR_EQUAL(device().pendingInput(), 0);
    };
    fault.end = [&] {
        QVERIFY(signalTo(device().bus().processId(), SIGCONT));
        WAIT_FOR_EQUAL(announced->size(), keys);
        device().setState(ls::StateId::Idle);
        QVERIFY(awaitReceiver(ls::ServiceId::UserMenu));
    };
    fault.freeKeyboards = {};
    fault.slackKiB = Fault::queueSlackKiB;
    verifyResilience(fault);
}

void BusFaultsTest::verifyFlood(const std::function<QVariantMap()>& makeCommand, int callsOfAClient)
{
    constexpr int clientCount = 3;
    constexpr int longCommands = 6; // until the whole flood has arrived
    startThroughShell(QStringLiteral("ulimit -n %1; exec \"$0\"").arg(descriptorLimit()));
    QStringList keys;
    for (int i = 200'000 + dice.below(200'000); i > 0; --i) {
        keys << ls::KeyId::Ten;
    }
    QVariantMap longCommand = commandOf(ls::KeyboardHandlerCmdId::SimulateShortcut);
    longCommand.insert(ls::keysListKey, keys);
    Fault fault;
    fault.begin = [&] {
        const QString address = device().bus().address();
        BusClient busy(address);
        std::vector<std::unique_ptr<BusClient>> clients(clientCount);
        for (auto& client : clients) {
            client = std::make_unique<BusClient>(address);
        }
        QSignalSpy announced(&device(), &SimulatedDevice::announced);
        QList<QDBusPendingCall> calls = busy.open(longCommand, longCommands);
        for (const auto& client : clients) {
            calls << client->open(makeCommand(), callsOfAClient);
            tap(ls::KeyId::Menu, dice.below(Panel::keyboardCount));
        }
        for (QDBusPendingCall& call : calls) {
            call.waitForFinished();
            // The bus rejects calls that it cannot deliver in time.
            QVERIFY2(!call.isError() || call.error().type() == QDBusError::LimitsExceeded,
                     qPrintable(call.error().message()));
        }
        WAIT_FOR_EQUAL(announced.size(), clientCount);
    };
    fault.freeKeyboards = {};    // keys wait until the commands are processed
    fault.slackKiB = 128 * 1024; // the heap keeps the memory of the largest burst
    verifyResilience(fault);
}

void BusFaultsTest::servicesSendDescriptors()
{
    QVERIFY(descriptorLimit() > 0);
    const auto makeCommand = [this] {
        constexpr int maxDescriptors = 16; // the limit of the bus for a message
        QVariantMap command = commandOf(ls::KeyboardHandlerCmdId::GetLongKeysTimeout);
        for (int i = 0; i < maxDescriptors; ++i) {
            command.insert(QString::number(i),
                           QVariant::fromValue(QDBusUnixFileDescriptor(dice.below(STDERR_FILENO + 1))));
        }
        return command;
    };
    verifyFlood(makeCommand, 120); // the bus rejects clients with more than 128 pending calls
}

void BusFaultsTest::servicesSendMegabytes()
{
    const auto makeCommand = [this] {
        constexpr int megabyte = 1024 * 1024;
        QVariantMap command = commandOf(ls::KeyboardHandlerCmdId::GetLongKeysTimeout);
        command.insert(QStringLiteral("odd"), QByteArray((24 + dice.below(7)) * megabyte, 'x'));
        return command;
    };
    verifyFlood(makeCommand, 1);
}

QTEST_GUILESS_MAIN(BusFaultsTest)
#include "BusFaultsTest.moc"

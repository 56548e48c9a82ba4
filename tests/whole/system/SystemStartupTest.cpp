// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusConnectionInterface>
#include <QDir>

#include <linux/input-event-codes.h>
#include <sys/syscall.h>

using namespace std::chrono_literals;

namespace {

const QString ownName = QStringLiteral("keyboard-handler");
const QString stateHandlerName = QStringLiteral("state-handler");
const QString speechName = QStringLiteral("speechd");

/// The thread that polls the dependencies sleeps four times in a pass without success.
constexpr int sleeps = 6;

} // namespace

class SystemStartupTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void aStaleDeclarationIsWithdrawnBeforeAnythingElse();
    void bothDependenciesAreAwaited_data();
    void bothDependenciesAreAwaited();
    void nothingIsDoneBeforeTheDependenciesAreReady();
    void readinessIsDeclaredAfterTheBusName();
    void theStateIsRequestedOnce();
    void theStateIsRequestedUnderTheBusName();
    void readinessIsDeclaredAfterTheState();
    void aCommandBeforeTheStateIsAnswered();
    void readinessDoesNotNeedTheBusName();
    void readinessDoesNotNeedInputDevices();
    void versionAndHelpWaitForTheDependencies_data();
    void versionAndHelpWaitForTheDependencies();
    void anUnknownOptionIsRefused();
    void aRestartedDaemonWorks();
    void bothEventLoopsWork_data();
    void bothEventLoopsWork();

private:
    bool pollsDependencies();
    bool hasBusName();
    /// The number of the system call in which the daemon's main thread waits; -1 if it is not waiting.
    long systemCall();
};

bool SystemStartupTest::pollsDependencies()
{
    const qint64 process = device().daemon().processId();
    // The start is complete when that thread is running.
    WAIT_FOR(ProcessFigures::threads(process) == 2 || !device().isRunning());
    const int before = ProcessFigures::voluntarySwitches(process);
    WAIT_FOR(ProcessFigures::voluntarySwitches(process) > before + sleeps || !device().isRunning());
    return device().isRunning();
}

bool SystemStartupTest::hasBusName()
{
    BusConnection client(device().bus().address());
    return client.get().interface()->isServiceRegistered(ls::busName(ls::ServiceId::KeyboardHandler));
}

long SystemStartupTest::systemCall()
{
    QFile file(QStringLiteral("/proc/%1/syscall").arg(device().daemon().processId()));
    bool isNumber = file.open(QIODevice::ReadOnly);
    const long number = file.readAll().split(' ').first().toLong(&isNumber);
    return isNumber ? number : -1;
}

void SystemStartupTest::aStaleDeclarationIsWithdrawnBeforeAnythingElse()
{
    options.dependenciesReady = false;
    QVERIFY(prepare());
    device().declareReady(ownName);
    QVERIFY(device().startDaemon());
    WAIT_FOR(!device().isReady());
    QVERIFY(device().isRunning());
}

void SystemStartupTest::bothDependenciesAreAwaited_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::newRow("the state handler first") << stateHandlerName << speechName;
    QTest::newRow("the speech daemon first") << speechName << stateHandlerName;
}

void SystemStartupTest::bothDependenciesAreAwaited()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    options.dependenciesReady = false;
    QVERIFY(prepare());
    QVERIFY(device().startDaemon());
    device().declareReady(first);
    QVERIFY(pollsDependencies());
    QVERIFY(!device().isReady());
    QCOMPARE(log(), QStringList());
    device().declareReady(second);
    WAIT_FOR(device().isReady());
    QVERIFY(nextKeyWorks());
}

void SystemStartupTest::nothingIsDoneBeforeTheDependenciesAreReady()
{
    options.dependenciesReady = false;
    QVERIFY(prepare());
    const QSignalSpy asked(&device().stateHandler(), &StateHandlerStandIn::asked);
    QVERIFY(device().startDaemon());
    device().typeLine(QStringLiteral("C 4"));
    QVERIFY(pollsDependencies());
    QVERIFY(!hasBusName());
    QVERIFY(asked.isEmpty());
    QCOMPARE(log(), QStringList());
}

void SystemStartupTest::readinessIsDeclaredAfterTheBusName()
{
    QVERIFY(launch());
    QVERIFY(hasBusName());
    QVERIFY(awaitLog(QStringLiteral("Successfully registered on DBus: \"com.vantre.KeyboardHandler\"")));
    QCOMPARE(completeLog().size(), 1);
}

void SystemStartupTest::theStateIsRequestedOnce()
{
    QVERIFY(prepare());
    const QSignalSpy asked(&device().stateHandler(), &StateHandlerStandIn::asked);
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().first().toMap(),
             QVariantMap({{ls::commandIdKey, "GetState"}, {ls::senderIdKey, "KeyboardHandler"}}));
}

void SystemStartupTest::theStateIsRequestedUnderTheBusName()
{
    QVERIFY(prepare());
    QList<bool> named;
    connect(&device().stateHandler(), &StateHandlerStandIn::asked, this, [&] { named << hasBusName(); });
    QVERIFY(launch());
    QCOMPARE(named, QList<bool>{true});
}

void SystemStartupTest::readinessIsDeclaredAfterTheState()
{
    QVERIFY(prepare());
    QElapsedTimer sinceQuestion;
    connect(&device().stateHandler(), &StateHandlerStandIn::asked, this, [&] { sinceQuestion.start(); });
    device().stateHandler().setDelay(2s);
    QVERIFY(device().startDaemon());
    WAIT_FOR(device().isReady());
    QVERIFY(sinceQuestion.isValid());
    QVERIFY2(sinceQuestion.elapsed() >= 1900, "A coarse timer may be 5 % early, but no more.");
    QVERIFY(nextKeyWorks());
}

void SystemStartupTest::aCommandBeforeTheStateIsAnswered()
{
    QVERIFY(prepare());
    device().stateHandler().setDelay(300ms);
    connect(&device().stateHandler(), &StateHandlerStandIn::asked, this, [this] {
        device().sendCommand({{ls::commandIdKey, "GetLastKey"}, {ls::senderIdKey, "WwwApi"}});
    });
    QVERIFY(launch());
    QVERIFY(awaitAction(QStringLiteral("answer errorId=Undefined key=0 resultId=Success")));
    QVERIFY(nextKeyWorks());
}

void SystemStartupTest::readinessDoesNotNeedTheBusName()
{
    options.namePolicy = DeviceOptions::NamePolicy::DenyOwnership;
    QVERIFY(launch());
    QVERIFY(!hasBusName());
    QVERIFY(nextKeyWorks());
}

void SystemStartupTest::readinessDoesNotNeedInputDevices()
{
    options.keyboards = {false, false};
    QVERIFY(launch());
    command(ls::KeyboardHandlerCmdId::SimulateModifier, {{ls::keysListKey, QStringList{"Help", "Ok"}}});
    QVERIFY(awaitAction(QStringLiteral("announce RepeatMessage UserMenu ServiceTool Help Ok")));
    // Without the first device, a simulated key is accepted but has no effect.
    command(ls::KeyboardHandlerCmdId::SimulateKey, {{ls::actionIdKey, "Released"}, {ls::keyKey, "Menu"}});
    QCOMPARE(actions().last(), QStringLiteral("answer errorId=Undefined resultId=Success"));
}

void SystemStartupTest::versionAndHelpWaitForTheDependencies_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QString>("output");
    QTest::newRow("version") << "--version"
                             << "keyboard-handler 1.0.3";
    QTest::newRow("help") << "--help"
                          << "Options:";
}

void SystemStartupTest::versionAndHelpWaitForTheDependencies()
{
    QFETCH(QString, option);
    options.daemonArguments = QStringList(option);
    options.dependenciesReady = false;
    QVERIFY(prepare());
    QStringList output;
    connect(&device(), &SimulatedDevice::outputLine, this, [&](const QString& line) { output << line; });
    const QSignalSpy exited(&device(), &SimulatedDevice::daemonExited);
    QVERIFY(device().startDaemon());
    QVERIFY(pollsDependencies());
    QVERIFY(output.isEmpty() && exited.isEmpty());
    device().declareReady(stateHandlerName);
    device().declareReady(speechName);
    WAIT_FOR_EQUAL(exited.size(), 1);
    QCOMPARE(exited.first().first().toInt(), 0);
    QTEST(output.value(option == "--help" ? 2 : 0), "output");
}

void SystemStartupTest::anUnknownOptionIsRefused()
{
    options.daemonArguments = QStringList("--odd");
    QVERIFY(prepare());
    const QSignalSpy exited(&device(), &SimulatedDevice::daemonExited);
    QVERIFY(device().startDaemon());
    WAIT_FOR_EQUAL(exited.size(), 1);
    QCOMPARE(exited.first().first().toInt(), 1);
    QVERIFY(!device().isReady());
}

void SystemStartupTest::aRestartedDaemonWorks()
{
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
    device().stopDaemon();
    QVERIFY(!device().isRunning());
    device().withdrawReady(ownName);
    QVERIFY(launch());
    QVERIFY(nextKeyWorks());
}

void SystemStartupTest::bothEventLoopsWork_data()
{
    QTest::addColumn<QStringList>("viewArguments");
    QTest::addColumn<long>("waitingIn");
    QTest::newRow("the unit's, Qt's own") << QStringList() << long(SYS_ppoll);
    QTest::newRow("GLib's") << QStringList{"--unsetenv", "QT_NO_GLIB"} << long(SYS_poll);
}

void SystemStartupTest::bothEventLoopsWork()
{
    QFETCH(QStringList, viewArguments);
    QFETCH(long, waitingIn);
    options.viewArguments = viewArguments;
    QVERIFY(launch());
    WAIT_FOR_EQUAL(systemCall(), waitingIn);
    QVERIFY(nextKeyWorks());
    tap(ls::KeyId::Up, 1);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu KeyboardHandler Up"))); // after its timer
    QCOMPARE(command(QStringLiteral("GetLastKey")).value(ls::keyKey), QVariant(KEY_UP));
    device().typeLine(QStringLiteral("HELP 4"));
    QVERIFY(awaitLog(QStringLiteral("\"GetLastKey\" params: [None]")));
}

QTEST_GUILESS_MAIN(SystemStartupTest)
#include "SystemStartupTest.moc"

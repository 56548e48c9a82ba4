// SPDX-License-Identifier: MIT
#include "simulator/device/SimulatedDevice.h"
#include "simulator/device/ObservationRecorder.h"
#include "tests/support/Waiting.h"

#include <ls/MessageKeys.h>

#include <QDir>
#include <QFileInfo>
#include <QtTest>

#include <memory>

#include <signal.h>

namespace {

const QVariantMap getLastKey{{ls::commandIdKey, "GetLastKey"}, {ls::senderIdKey, "ServiceTool"}};

const QString noSpace = QStringLiteral(" cannot be written: No space left on device");

bool isAlive(qint64 processId)
{
    return kill(pid_t(processId), 0) == 0;
}

bool isStopped(qint64 processId)
{
    QFile status(QStringLiteral("/proc/%1/status").arg(processId));
    return status.open(QIODevice::ReadOnly) && status.readAll().contains("\nState:\tT");
}

} // namespace

class SimulatedDeviceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDeviceBecomesReady();
    void nothingIsLeftBehind();
    void devicesAreIndependent();
    void aMissingDaemonIsReported();
    void aCommandWithoutDaemonFails();
    void aCommandWithoutBusFails();
    void theEndOfTheDaemonIsReported();
    void theDaemonUsesTheFilesOfTheDevice();
    void stoppedProcessesAreKilled_data();
    void stoppedProcessesAreKilled();
    void aKeyListOnAFullDiskIsReported();
    void aBusOnAFullDiskIsReported();
    void aFailedReadinessDeclarationIsReported();
};

void SimulatedDeviceTest::aDeviceBecomesReady()
{
    SimulatedDevice device;
    QVERIFY2(device.start(), qPrintable(device.errorString()));
    QVERIFY(device.isRunning());
    WAIT_FOR(device.isReady());
    QCOMPARE(device.request(getLastKey).value(ls::resultIdKey).toString(), QStringLiteral("Success"));
}

void SimulatedDeviceTest::nothingIsLeftBehind()
{
    qint64 daemon = 0;
    QString folder;
    {
        SimulatedDevice device;
        QVERIFY(device.start());
        daemon = device.daemon().processId();
        folder = device.folder().runFolder();
        QVERIFY(isAlive(daemon) && QFileInfo::exists(folder));
    }
    QVERIFY(!isAlive(daemon));
    QVERIFY(!QFileInfo::exists(folder));
}

void SimulatedDeviceTest::devicesAreIndependent()
{
    SimulatedDevice first;
    SimulatedDevice second;
    QVERIFY(first.start() && second.start());
    WAIT_FOR(first.isReady() && second.isReady());
    const ObservationRecorder recorder(first);
    const QSignalSpy announced(&second, &SimulatedDevice::announced);
    second.press(0, ls::KeyId::Menu);
    second.release(0, ls::KeyId::Menu);
    WAIT_FOR_EQUAL(announced.size(), 1);
    first.request(getLastKey);
    QCOMPARE(recorder.observations().last().text,
             QStringLiteral("answer errorId=Undefined key=0 resultId=Success"));
}

void SimulatedDeviceTest::aMissingDaemonIsReported()
{
    DeviceOptions options;
    options.daemon = QStringLiteral("/nowhere/daemon");
    SimulatedDevice device(options);
    QVERIFY(!device.start());
    QCOMPARE(device.errorString(), QStringLiteral("The daemon /nowhere/daemon does not exist."));
}

void SimulatedDeviceTest::aCommandWithoutDaemonFails()
{
    SimulatedDevice device;
    QVERIFY(device.startServices());
    const QSignalSpy failed(&device, &SimulatedDevice::commandFailed);
    QCOMPARE(device.request(getLastKey), QVariantMap());
    QCOMPARE(failed.size(), 1);
    QCOMPARE(failed.first().first().value<QDBusError>().type(), QDBusError::ServiceUnknown);
}

void SimulatedDeviceTest::aCommandWithoutBusFails()
{
    DeviceOptions options;
    options.bus = false;
    SimulatedDevice device(options);
    QVERIFY(device.start());
    const QSignalSpy failed(&device, &SimulatedDevice::commandFailed);
    QCOMPARE(device.request(getLastKey), QVariantMap());
    QCOMPARE(failed.size(), 1);
}

void SimulatedDeviceTest::theEndOfTheDaemonIsReported()
{
    SimulatedDevice device;
    QVERIFY(device.start());
    WAIT_FOR(device.isReady());
    const QSignalSpy exited(&device, &SimulatedDevice::daemonExited);
    QCOMPARE(kill(pid_t(device.daemon().processId()), SIGKILL), 0);
    WAIT_FOR_EQUAL(exited.size(), 1);
    QCOMPARE(exited.first().first().toInt(), 128 + SIGKILL);
    QVERIFY(!device.isRunning());
}

void SimulatedDeviceTest::theDaemonUsesTheFilesOfTheDevice()
{
    DeviceOptions options;
    options.daemon = QStringLiteral("/bin/ls");
    options.daemonArguments = QStringList{"/dev/input", "/var/lib/keyboard-handler", "/run/service-watcher"};
    options.keyListFolder.clear();
    options.keyLists = {{QStringLiteral("longKeyList.json"), "{}"}};
    options.keyboards = {false, true};
    SimulatedDevice device(options);
    QStringList lines;
    connect(&device, &SimulatedDevice::outputLine, this, [&](const QString& line) { lines << line; });
    const QSignalSpy exited(&device, &SimulatedDevice::daemonExited);
    QVERIFY(device.start());
    WAIT_FOR_EQUAL(exited.size(), 1);
    QCOMPARE(lines.join(' '),
             QStringLiteral("/dev/input: event1  /run/service-watcher: speechd state-handler  "
                            "/var/lib/keyboard-handler: longKeyList.json"));
}

void SimulatedDeviceTest::stoppedProcessesAreKilled_data()
{
    QTest::addColumn<bool>("isBus");
    QTest::newRow("the daemon") << false;
    QTest::newRow("the bus") << true;
}

void SimulatedDeviceTest::stoppedProcessesAreKilled()
{
    QFETCH(bool, isBus);
    auto device = std::make_unique<SimulatedDevice>();
    QVERIFY(device->start());
    WAIT_FOR(device->isReady());
    const qint64 process = isBus ? device->bus().processId() : device->daemon().processId();
    QCOMPARE(kill(pid_t(process), SIGSTOP), 0);
    WAIT_FOR(isStopped(process));
    device.reset();
    QVERIFY(!isAlive(process));
}

void SimulatedDeviceTest::aKeyListOnAFullDiskIsReported()
{
    // Reaches the root from a folder of any depth.
    const QString file = QStringLiteral("../").repeated(50) + "dev/full";
    DeviceOptions options;
    options.keyLists.insert(file, "{}");
    SimulatedDevice device(options);
    QVERIFY(!device.start());
    QVERIFY2(device.errorString().endsWith(file + noSpace), qPrintable(device.errorString()));
}

void SimulatedDeviceTest::aBusOnAFullDiskIsReported()
{
    SimulatedDevice device;
    const QString file = device.folder().busConfiguration();
    QVERIFY(QFile::link("/dev/full", file));
    QVERIFY(!device.start());
    QCOMPARE(device.errorString(), file + noSpace);
}

void SimulatedDeviceTest::aFailedReadinessDeclarationIsReported()
{
    SimulatedDevice device;
    QVERIFY(QDir(device.folder().runFolder()).mkpath("service-watcher/speechd"));
    QVERIFY(!device.start());
    QVERIFY2(device.errorString().contains("/speechd cannot be written: "), qPrintable(device.errorString()));
}

QTEST_GUILESS_MAIN(SimulatedDeviceTest)
#include "SimulatedDeviceTest.moc"

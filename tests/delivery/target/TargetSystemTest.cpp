// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Command.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/support/Waiting.h"

#include "simulator/script/KeyScriptText.h"
#include "simulator/script/ObservationText.h"

#include <ls/BusNames.h>

#include <QProcess>

namespace {

constexpr int timeoutMs = 30'000;

const QString busName = ls::busName(ls::ServiceId::KeyboardHandler);
const QString registered = QStringLiteral("Successfully registered on DBus: \"%1\"").arg(busName);
const QString deviceGone =
    QStringLiteral("Keyboard::readEvents ERROR: Error reading from device /dev/input/event0: No such device");
const QString cpuTime = QStringLiteral("CPUUsageNSec");

/// Whether the daemon is active with another process than `process`.
bool hasRestarted(int process)
{
    const int now = Unit::mainProcess(Unit::daemon);
    return now != 0 && now != process && Unit::isActive(Unit::daemon);
}

/// The process that owns the daemon's bus name.
int nameOwner()
{
    return Command::shell(QStringLiteral("busctl status %1 | sed -n s/^PID=//p").arg(busName))
        .output.trimmed()
        .toInt();
}

} // namespace

/// Tests the installed daemon under systemd with the kernel's keyboards, beyond key scripts.
class TargetSystemTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void theBootEndsWithAReadyDaemon();
    void actionsAreAnnouncedInTime_data();
    void actionsAreAnnouncedInTime();
    void aKeyHeldDuringTheStartIsALongPress();
    void aKeyHeldDuringTheStartIsAnnouncedOnRelease();
    void unpluggingADeviceDuringAChordLosesNoLaterKey();
    void aLooseContactDoesNotEndTheService();
    void aKilledDaemonIsRestarted();
    void aRepeatedlyEndingDaemonIsNoLongerRestarted();
    void theDaemonWorksWithoutTheSpeechDaemon();
    void aFaultyKeyListIsLoggedAndTheOthersWork_data();
    void aFaultyKeyListIsLoggedAndTheOthersWork();
    void waitingForTheStateHandlerUsesLittleProcessorTime();
    void aSecondDaemonDoesNotTakeTheName();
    void aMissingGroupPreventsOnlyReadiness();
    void aMissingUserIsRecreated();
    void thePanelMayStartAfterTheDaemon();
    void theDaemonStartsAndRestartsWithTheBus();
    void thePackageCanBePurgedAndReinstalled();
};

void TargetSystemTest::theBootEndsWithAReadyDaemon()
{
    WAIT_FOR(Unit::isActive(Unit::daemon));
    QCOMPARE(Command::shell(QStringLiteral("systemctl --failed --no-legend")).output, QString());
    QCOMPARE(Command::shell(QStringLiteral("journalctl -q -b -o cat _SYSTEMD_UNIT=keyboard-handler.service"))
                 .output.trimmed(),
             registered);
    verifyServing();
}

void TargetSystemTest::actionsAreAnnouncedInTime_data()
{
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("announcement");
    QTest::addColumn<int>("earliest");
    QTest::newRow("immediate") << "press Menu\nwait 50\nrelease Menu"
                               << "SingleKey UserMenu - Menu" << 50;
    QTest::newRow("a lone key") << "press Up\nwait 50\nrelease Up\nwait 2000"
                                << "SingleKey UserMenu - Up" << 1550;
    QTest::newRow("a long press") << "hold Help 3000\nwait 2000"
                                  << "KeyDescription UserMenu - Help" << 2250;
    QTest::newRow("a shortcut")
        << "press Function\nwait 100\npress Up\nwait 100\nrelease Up\nrelease Function"
        << "VolumeUp UserMenu - Function Up" << 100;
    QTest::newRow("factory reset") << "hold FactoryReset 5500"
                                   << "FactoryReset WwwApi - FactoryReset" << 5000;
}

void TargetSystemTest::actionsAreAnnouncedInTime()
{
    constexpr int lateness = 100; // the tick of the kernel's repetition timer and the transfer over the bus
    QFETCH(QString, steps);
    QFETCH(QString, announcement);
    QFETCH(int, earliest);
    QVERIFY(restartDaemon());
    play(parseKeyScriptSteps(steps).script);
    const Observations observed = device().observations();
    const auto found = std::find_if(observed.begin(), observed.end(), [&](const Observation& observation) {
        return observation.text == "announce " + announcement;
    });
    QVERIFY(found != observed.end());
    const int at = int(found->at.count());
    QVERIFY2(at >= earliest && at <= earliest + lateness, qPrintable(QString::number(at)));
}

void TargetSystemTest::aKeyHeldDuringTheStartIsALongPress()
{
    device().press(0, ls::KeyId::Help);
    QVERIFY(restartDaemon());
    // The time starts at the first repetition that the daemon reads.
    QCOMPARE(playSteps(QStringLiteral("wait 2500\n"
                                      "expect 1800 announce KeyDescription UserMenu - Help\n")),
             QStringList());
    device().release(0, ls::KeyId::Help);
    QTest::qWait(2000);
    QCOMPARE(playSteps(QStringLiteral("tap Up\n"
                                      "expect +0 speak EmbosserCore 24\n"
                                      "wait 1500\n"
                                      "expect +0 announce SingleKey UserMenu KeyboardHandler Up\n")),
             QStringList());
}

void TargetSystemTest::aKeyHeldDuringTheStartIsAnnouncedOnRelease()
{
    device().press(1, ls::KeyId::Up);
    QVERIFY(restartDaemon());
    QCOMPARE(playSteps(QStringLiteral("device 1\n"
                                      "release Up\n"
                                      "expect +0 speak EmbosserCore 24\n"
                                      "wait 1500\n"
                                      "expect +0 announce SingleKey UserMenu - Up\n")),
             QStringList());
}

void TargetSystemTest::unpluggingADeviceDuringAChordLosesNoLaterKey()
{
    QVERIFY(restartDaemon());
    device().press(0, ls::KeyId::Function);
    QTest::qWait(100);
    const int process = Unit::mainProcess(Unit::daemon);
    QElapsedTimer clock;
    clock.start();
    device().unplug(0);
    WAIT_FOR(!TargetDevice::isPlugged(0));
    WAIT_FOR(hasRestarted(process));
    qInfo("the other device works again after %lld ms", static_cast<long long>(clock.elapsed()));
    // The daemon was restarted without the device and works with the other one.
    QCOMPARE(logWith(deviceGone).first(), deviceGone);
    device().restartObserving();
    QCOMPARE(playSteps(QStringLiteral("device 1\n"
                                      "tap Up\n"
                                      "expect +0 speak EmbosserCore 24\n"
                                      "wait 1500\n"
                                      "expect +0 announce SingleKey UserMenu - Up\n")),
             QStringList());
    device().plug(0);
    WAIT_FOR(TargetDevice::isPlugged(0));
    verifyServing();
}

void TargetSystemTest::aLooseContactDoesNotEndTheService()
{
    constexpr int contacts = 12; // more than the unit's start limit for a minute
    QVERIFY(restartDaemon());
    for (int contact = 0; contact < contacts; ++contact) {
        const int process = Unit::mainProcess(Unit::daemon);
        QCOMPARE(
            Command::shell(QStringLiteral("udevadm trigger --action=add --name-match=input/event0")).status,
            0);
        WAIT_FOR(hasRestarted(process));
    }
    verifyServing();
}

void TargetSystemTest::aKilledDaemonIsRestarted()
{
    QVERIFY(restartDaemon());
    const int process = Unit::mainProcess(Unit::daemon);
    Command::shell(QStringLiteral("kill -KILL %1").arg(process));
    WAIT_FOR(!TargetDevice::isReady() || Unit::mainProcess(Unit::daemon) != process);
    verifyServing();
    QVERIFY(Unit::mainProcess(Unit::daemon) != process);
}

void TargetSystemTest::aRepeatedlyEndingDaemonIsNoLongerRestarted()
{
    QVERIFY(restartDaemon());
    const auto hasFailed = [] {
        return Unit::property(Unit::daemon, QStringLiteral("ActiveState")) == QLatin1String("failed");
    };
    const auto isGivenUp = [&] {
        Unit::control({QStringLiteral("kill"), QStringLiteral("--signal=KILL"),
                       QStringLiteral("--kill-whom=main"), Unit::daemon});
        return hasFailed();
    };
    WAIT_FOR(isGivenUp());
    QVERIFY(!TargetDevice::isReady());
    // The unit stays failed, whatever happens to the panel.
    device().unplug(0);
    WAIT_FOR(!TargetDevice::isPlugged(0));
    device().plug(0);
    WAIT_FOR(TargetDevice::isPlugged(0));
    QCOMPARE(Command::shell(QStringLiteral("udevadm settle")).status, 0);
    QVERIFY(hasFailed());
    QVERIFY(Unit::restart(Unit::daemon));
    verifyServing();
}

void TargetSystemTest::theDaemonWorksWithoutTheSpeechDaemon()
{
    QVERIFY(restartDaemon());
    QVERIFY(Unit::stop(Unit::speechDaemon));
    QCOMPARE(playSteps(QStringLiteral("tap Up\n"
                                      "expect +0 speak EmbosserCore 24\n" // sent without a receiver
                                      "wait 1500\n"
                                      "expect +0 announce SingleKey UserMenu - Up\n")),
             QStringList());
    QVERIFY(Unit::start(Unit::speechDaemon));
    QCOMPARE(playSteps(QStringLiteral("tap Up\n"
                                      "expect +0 speak EmbosserCore 24\n"
                                      "wait 1500\n"
                                      "expect +0 announce SingleKey UserMenu KeyboardHandler Up\n")),
             QStringList());
}

void TargetSystemTest::aFaultyKeyListIsLoggedAndTheOthersWork_data()
{
    const QString unreadable =
        QStringLiteral("LongKey::load ERROR: reading \"/var/lib/keyboard-handler/longKeyList.json\" failed.");
    const QString tooLarge = QStringLiteral(
        "LongKey::load ERROR: \"/var/lib/keyboard-handler/longKeyList.json\" is over the limit "
        "of 1048576 bytes: 20000000");
    const QString absent = QStringLiteral("LongKey::load ERROR: value list LongKeys not found!.");
    const QString noList =
        QStringLiteral("LongKey::load ERROR: value list LongKeys conversion to list failed!");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("log");
    QTest::newRow("empty") << QByteArray() << QStringList{unreadable, absent};
    QTest::newRow("an extra comma") << QByteArray(R"({"LongKeys": [{"keys": ["Help"],}]})")
                                    << QStringList{unreadable, absent};
    QTest::newRow("a misspelt section") << QByteArray(R"({"LongKey": []})") << QStringList{absent};
    QTest::newRow("an object as list")
        << QByteArray(R"({"LongKeys": {"keys": ["Help"]}})") << QStringList{noList};
    QTest::newRow("fields of other types")
        << QByteArray(R"({"LongKeys": [{"keys": "Help", "timeout": [], "validOnState": 7}, 3]})")
        << QStringList();
    QTest::newRow("20 MB") << QByteArray(20'000'000, ' ') << QStringList{tooLarge, unreadable, absent};
}

void TargetSystemTest::aFaultyKeyListIsLoggedAndTheOthersWork()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, log);
    const QString file = QStringLiteral("longKeyList.json");
    QVERIFY(restartDaemon());
    QVERIFY(device().setKeyLists({{file, content}}));
    device().restartObserving();
    QVERIFY(Unit::restart(Unit::daemon));
    log.prepend(registered);
    QCOMPARE(logWith(log.last()), log);
    QCOMPARE(playSteps(QStringLiteral("tap Help\n"
                                      "expect +0 speak EmbosserCore 20\n"
                                      "wait 100\n"
                                      "tap Feed\n"
                                      "expect +0 announce PaperStatus PrintManager - Help Feed\n"
                                      "expect +0 speak EmbosserCore 19\n"
                                      "wait 1600\n")),
             QStringList());
}

void TargetSystemTest::waitingForTheStateHandlerUsesLittleProcessorTime()
{
    constexpr qint64 maxWaitingCost = 500'000'000; // during the 10 s below, in ns; mostly for the start
    const QString readiness = QStringLiteral("/run/service-watcher/state-handler");
    QVERIFY(restartDaemon());
    QVERIFY(QFile::remove(readiness));
    QVERIFY(Unit::control({QStringLiteral("--no-block"), QStringLiteral("restart"), Unit::daemon}));
    QTest::qWait(10'000);
    QVERIFY(!TargetDevice::isReady());
    QCOMPARE(Unit::property(Unit::daemon, QStringLiteral("ActiveState")), QStringLiteral("activating"));
    const qint64 used = Unit::property(Unit::daemon, cpuTime).toLongLong();
    QVERIFY2(used < maxWaitingCost, qPrintable(QString::number(used)));
    QVERIFY(Unit::restart(Unit::stateHandler));
    verifyServing();
}

void TargetSystemTest::aSecondDaemonDoesNotTakeTheName()
{
    QVERIFY(restartDaemon());
    const int process = Unit::mainProcess(Unit::daemon);
    QCOMPARE(nameOwner(), process);
    QProcess second;
    second.setProcessChannelMode(QProcess::MergedChannels);
    second.setStandardInputFile(QProcess::nullDevice());
    second.start(QStringLiteral("runuser"),
                 {QStringLiteral("-u"), QStringLiteral("keyboard-handler"), QStringLiteral("--"),
                  QStringLiteral("/usr/sbin/keyboard-handler")});
    WAIT_FOR(second.canReadLine());
    QCOMPARE(second.readLine().trimmed(),
             QByteArray("Unable to register Service: Service-name already in use."));
    QCOMPARE(nameOwner(), process);

    // Both daemons read the panel and announce.
    WAIT_FOR(TargetDevice::isReady());
    device().restartObserving();
    QVERIFY(nextKeyWorks());
    WAIT_FOR_EQUAL(device().observations().size(), 2);
    second.terminate();
    QVERIFY(second.waitForFinished(timeoutMs));
    verifyServing();
    QCOMPARE(nameOwner(), process);
}

void TargetSystemTest::aMissingGroupPreventsOnlyReadiness()
{
    QCOMPARE(Command::shell(QStringLiteral("groupdel embosser-services")).status, 0);
    QVERIFY(restartDaemon() || Unit::isActive(Unit::daemon));
    QVERIFY(!TargetDevice::isReady());
    QVERIFY(nextKeyWorks());
    QCOMPARE(Command::shell(QStringLiteral("systemd-sysusers && systemd-tmpfiles --create && "
                                           "systemctl reload dbus"))
                 .status,
             0);
    QVERIFY(restartDaemon());
    verifyServing();
}

void TargetSystemTest::aMissingUserIsRecreated()
{
    QVERIFY(Unit::stop(Unit::daemon));
    QCOMPARE(Command::shell(QStringLiteral("userdel keyboard-handler")).status, 0);
    QVERIFY(!restartDaemon());
    QVERIFY(!Unit::isActive(Unit::daemon));
    // Like the next boot.
    QCOMPARE(
        Command::shell(QStringLiteral("systemd-sysusers && "
                                      "systemctl reload dbus && "
                                      "udevadm trigger --action=change --subsystem-match=input --settle"))
            .status,
        0);
    QVERIFY(restartDaemon());
    verifyServing();
}

void TargetSystemTest::thePanelMayStartAfterTheDaemon()
{
    QVERIFY(Unit::stop(Unit::panel));
    WAIT_FOR(!TargetDevice::isPlugged(0) && !TargetDevice::isPlugged(1));
    // The daemon also starts without a panel, after 30 s.
    QElapsedTimer clock;
    clock.start();
    QVERIFY(restartDaemon());
    QVERIFY2(clock.elapsed() < 40'000, qPrintable(QString::number(clock.elapsed())));
    QVERIFY(Unit::start(Unit::panel));
    QVERIFY(reconnect());
    verifyServing();
}

void TargetSystemTest::theDaemonStartsAndRestartsWithTheBus()
{
    QVERIFY(Unit::control(
        {QStringLiteral("stop"), QStringLiteral("dbus.socket"), QStringLiteral("dbus.service")}));
    QVERIFY(!Unit::isActive(Unit::daemon));
    QVERIFY(!TargetDevice::isReady());
    QVERIFY(Unit::start(Unit::daemon));
    QVERIFY(reconnect());
    verifyServing();
}

void TargetSystemTest::thePackageCanBePurgedAndReinstalled()
{
    QCOMPARE(Command::shell(QStringLiteral("dpkg --purge keyboard-handler")).status, 0);
    QVERIFY(!QFile::exists(QStringLiteral("/usr/sbin/keyboard-handler")));
    QVERIFY(!QFile::exists(QStringLiteral("/run/service-watcher/keyboard-handler")));
    QCOMPARE(Unit::mainProcess(Unit::daemon), 0);
    const auto installed = Command::shell(
        QStringLiteral("dpkg --install /usr/lib/keyboard-handler-tests/packages/keyboard-handler.deb"));
    QVERIFY2(installed.status == 0, qPrintable(installed.output));
    verifyServing();
}

QTEST_GUILESS_MAIN(TargetSystemTest)
#include "TargetSystemTest.moc"

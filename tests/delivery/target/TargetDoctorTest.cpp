// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Command.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/delivery/target/UinputKeyboard.h"
#include "tests/support/Waiting.h"

#include <QScopeGuard>

#include <csignal>

namespace {

const QString doctorLine = QStringLiteral("/usr/bin/keyboard-handlerctl doctor");

/// What `doctor` prints to root.
QString doctor()
{
    return '\n' + Command::shell(doctorLine).output;
}

} // namespace

/// `keyboard-handlerctl doctor` with systemd, a journal and kernel keyboards.
class TargetDoctorTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void aHealthyDeviceHasNoFailure();
    // Before a device is unplugged: the daemon then logs more lines than the journal takes in half a minute.
    void errorsInTheJournalAreNamed();
    void aStoppedUnitIsNamed();
    void aStoppedProcessIsNamed();
    void aStateOtherThanIdleIsNamed();
    void aUserWithoutRightsLearnsTheGroup();
    void aPanelWithoutAutorepeatIsNamed();
    void aPanelWithoutAKeyIsNamed();
    void anotherDeviceInPlaceOfThePanelIsNamed();
    void aDeviceThatIsMissingIsNamed();

private:
    void replacePanel(const QString& firstName, const UinputKeyboard::Faults& faults = {});
    void restorePanel();
    void verifyNamed(const QString& line);

    std::unique_ptr<UinputKeyboard> m_first;
    std::unique_ptr<UinputKeyboard> m_second;
};

/// Replaces the panel's devices by others, and restarts the daemon with them.
void TargetDoctorTest::replacePanel(const QString& firstName, const UinputKeyboard::Faults& faults)
{
    QVERIFY(Unit::stop(Unit::panel));
    WAIT_FOR(!TargetDevice::isPlugged(0) && !TargetDevice::isPlugged(1));
    m_first = std::make_unique<UinputKeyboard>(firstName, faults);
    WAIT_FOR(TargetDevice::isPlugged(0));
    m_second = std::make_unique<UinputKeyboard>(QStringLiteral("embosser-panel-1"), faults);
    WAIT_FOR(TargetDevice::isPlugged(1));
    QCOMPARE(Command::shell(QStringLiteral("udevadm settle")).status, 0);
    QVERIFY(Unit::restart(Unit::daemon));
    WAIT_FOR(TargetDevice::isReady());
}

void TargetDoctorTest::restorePanel()
{
    m_first.reset();
    m_second.reset();
    WAIT_FOR(!TargetDevice::isPlugged(0) && !TargetDevice::isPlugged(1));
    QVERIFY(Unit::start(Unit::panel));
    WAIT_FOR(TargetDevice::isPlugged(0) && TargetDevice::isPlugged(1));
    QVERIFY(reconnect());
}

void TargetDoctorTest::verifyNamed(const QString& line)
{
    const QString output = doctor();
    QVERIFY2(output.contains('\n' + line), qPrintable(output));
}

void TargetDoctorTest::aHealthyDeviceHasNoFailure()
{
    QVERIFY(restartDaemon());
    verifyServing();
    const QString output = doctor();
    QVERIFY2(!output.contains(QLatin1String("\nfailure:")), qPrintable(output));
    for (const char* expected :
         {"ok: rights: You are root: nothing is hidden.", "ok: unit: The unit keyboard-handler is active.",
          "ok: answer: The daemon answers.", "ok: nodes: The daemon has /dev/input/event0 open.",
          "ok: nodes: The daemon has /dev/input/event1 open.",
          "ok: autorepeat: /dev/input/event0 repeats held keys, first after 250 ms, then every 33 ms.",
          "ok: keys: The panel has the keys of all rows.",
          "ok: state: The state handler reports Idle, in which all gestures work.",
          "ok: log: The running daemon has logged no error."}) {
        QVERIFY2(output.contains('\n' + QLatin1String(expected)), qPrintable(output));
    }
    QVERIFY2(!output.contains(QLatin1String("is also open in")), qPrintable(output));
}

void TargetDoctorTest::errorsInTheJournalAreNamed()
{
    QVERIFY(restartDaemon({{QStringLiteral("longKeyList.json"), "{ \"LongKeys\": [ 1 2 ] }"}}));
    const QString output = doctor();
    QVERIFY2(output.contains(
                 QLatin1String("\nwarning: log: The running daemon has logged errors (2 lines); the last "
                               "one: LongKey::load ERROR: value list LongKeys not found!.\n")),
             qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("\nfailure: rows: /var/lib/keyboard-handler/longKeyList.json:")),
             qPrintable(output));
    QVERIFY(restartDaemon());
}

void TargetDoctorTest::aStoppedUnitIsNamed()
{
    QVERIFY(Unit::stop(Unit::daemon));
    verifyNamed(QStringLiteral("failure: unit: The unit keyboard-handler is stopped."));
    QVERIFY(restartDaemon());
    verifyNamed(QStringLiteral("ok: unit: The unit keyboard-handler is active."));
}

void TargetDoctorTest::aStoppedProcessIsNamed()
{
    QVERIFY(restartDaemon());
    const pid_t process = Unit::mainProcess(Unit::daemon);
    QCOMPARE(kill(process, SIGSTOP), 0);
    const QString output = doctor();
    QCOMPARE(kill(process, SIGCONT), 0);
    QVERIFY2(output.contains(
                 QStringLiteral("\nfailure: process: The daemon, process %1, is stopped").arg(process)),
             qPrintable(output));
    QVERIFY2(output.contains(QLatin1String("\nfailure: answer: ")), qPrintable(output));
}

void TargetDoctorTest::aStateOtherThanIdleIsNamed()
{
    QVERIFY(restartDaemon({}, ls::StateId::Print));
    verifyNamed(QStringLiteral("warning: state: The state handler reports Print: "));
    QVERIFY(restartDaemon());
}

void TargetDoctorTest::aUserWithoutRightsLearnsTheGroup()
{
    QVERIFY(restartDaemon());
    const QString output =
        '\n' +
        Command::shell(QStringLiteral("setpriv --reuid=games --regid=games --clear-groups ") + doctorLine)
            .output;
    for (const char* expected :
         {"warning: rights: The user games is not in the group embosser-services: ",
          "unknown: answer: You may not ask the daemon whether it answers.",
          "unknown: nodes: /dev/input/event0 is there; only root sees whether the daemon has it open.",
          "unknown: autorepeat: /dev/input/event0 does not say what it can do: Permission denied.",
          "unknown: log: The log of the daemon cannot be read: "}) {
        QVERIFY2(output.contains('\n' + QLatin1String(expected)), qPrintable(output));
    }
}

void TargetDoctorTest::aPanelWithoutAutorepeatIsNamed()
{
    UinputKeyboard::Faults faults;
    faults.lacksAutorepeat = true;
    const auto restored = qScopeGuard([this] { restorePanel(); });
    replacePanel(QStringLiteral("embosser-panel-0"), faults);
    verifyNamed(QStringLiteral("failure: autorepeat: /dev/input/event1 does not repeat held keys"));
}

void TargetDoctorTest::aPanelWithoutAKeyIsNamed()
{
    UinputKeyboard::Faults faults;
    faults.missingKey = ls::KeyId::meta.value(ls::KeyId::Chs);
    const auto restored = qScopeGuard([this] { restorePanel(); });
    replacePanel(QStringLiteral("embosser-panel-0"), faults);
    verifyNamed(
        QStringLiteral("failure: keys: No device sends the keys of these actions (the missing key is in "
                       "brackets): NextCharacterSet (Chs) and PreviousCharacterSet (Chs)."));
}

void TargetDoctorTest::anotherDeviceInPlaceOfThePanelIsNamed()
{
    const auto restored = qScopeGuard([this] { restorePanel(); });
    replacePanel(QStringLiteral("Power Button"));
    verifyNamed(
        QStringLiteral("failure: nodes: /dev/input/event0 is \"Power Button\", not a device of the panel "
                       "(embosser-panel-1 is event1): the daemon reads the wrong device."));
}

void TargetDoctorTest::aDeviceThatIsMissingIsNamed()
{
    QVERIFY(restartDaemon());
    device().unplug(1);
    WAIT_FOR(!TargetDevice::isPlugged(1));
    verifyNamed(
        QStringLiteral("failure: nodes: /dev/input/event1 is missing: the keys of this device are lost "));
}

QTEST_GUILESS_MAIN(TargetDoctorTest)
#include "TargetDoctorTest.moc"

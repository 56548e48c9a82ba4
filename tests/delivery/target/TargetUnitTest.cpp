// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Command.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/delivery/target/UinputKeyboard.h"
#include "tests/support/Waiting.h"

namespace {

constexpr int timeoutMs = 30'000;

const QString otherNode = QStringLiteral("/dev/input/event2");

/// The udev properties of the node, without former tags.
QStringList deviceProperties(const QString& node)
{
    return Command::run(QStringLiteral("udevadm"),
                        {QStringLiteral("info"), QStringLiteral("--query=property"), node})
        .output.split('\n');
}

bool hasTag(const QString& node, const QString& tag)
{
    const QStringList current = deviceProperties(node).filter(QRegularExpression("^CURRENT_TAGS="));
    return current.join(QString()).contains(':' + tag + ':');
}

QString groupOf(const QString& node)
{
    return QFileInfo(node).group();
}

/// Opens the node as root for reading, in the unit's control group; returns the shell's error message, if
/// any.
QString openInUnit(const QString& node)
{
    const QString group = Unit::property(Unit::daemon, QStringLiteral("ControlGroup"));
    return Command::shell(QStringLiteral("echo $$ >/sys/fs/cgroup%1/cgroup.procs && : <%2").arg(group, node))
        .output;
}

/// A limit of the unit's control group.
QString limit(const QString& name)
{
    QFile file(QStringLiteral("/sys/fs/cgroup") +
               Unit::property(Unit::daemon, QStringLiteral("ControlGroup")) + '/' + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()).trimmed() : QString();
}

} // namespace

/// Tests the unit and the device rules, except the confinement.
class TargetUnitTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTheDaemonMayOpenThePanel();
    void otherKeyboardsAreUnaffected();
    void theLimitsOfTheUnitAreEnforced();
    void pluggingInThePanelDoesNotStartAStoppedService();
    void anEndedBusIsRestartedWithTheDaemon();
};

void TargetUnitTest::onlyTheDaemonMayOpenThePanel()
{
    for (const char* name : {"/dev/input/event0", "/dev/input/event1"}) {
        const QString node = QString::fromLatin1(name);
        QCOMPARE(groupOf(node), QStringLiteral("keyboard-handler"));
        QVERIFY(hasTag(node, QStringLiteral("systemd")));
        QVERIFY(!hasTag(node, QStringLiteral("power-switch")));
        QVERIFY(deviceProperties(node).contains(QStringLiteral("LIBINPUT_IGNORE_DEVICE=1")));
    }
}

void TargetUnitTest::otherKeyboardsAreUnaffected()
{
    const int process = Unit::mainProcess(Unit::daemon);
    const UinputKeyboard other(QStringLiteral("other keyboard"));
    QVERIFY(other.isPlugged());
    WAIT_FOR(QFile::exists(otherNode));
    QCOMPARE(Command::shell(QStringLiteral("udevadm settle")).status, 0);
    QCOMPARE(groupOf(otherNode), QStringLiteral("input"));
    QVERIFY(hasTag(otherNode, QStringLiteral("power-switch")));
    QVERIFY(!deviceProperties(otherNode).contains(QStringLiteral("LIBINPUT_IGNORE_DEVICE=1")));
    verifyServing();
    QCOMPARE(Unit::mainProcess(Unit::daemon), process);

    // Even with permissions for all users.
    QCOMPARE(Command::shell(QStringLiteral("chmod 666 %1 && : <%1").arg(otherNode)).output, QString());
    QCOMPARE(openInUnit(QStringLiteral("/dev/input/event0")), QString());
    QVERIFY(openInUnit(otherNode).contains(QLatin1String("Operation not permitted")));
}

void TargetUnitTest::theLimitsOfTheUnitAreEnforced()
{
    constexpr int memoryMax = 256 * 1024 * 1024;
    QCOMPARE(limit(QStringLiteral("memory.max")), QString::number(memoryMax));
    QCOMPARE(limit(QStringLiteral("memory.swap.max")), QStringLiteral("0"));
    QCOMPARE(limit(QStringLiteral("pids.max")), QStringLiteral("16"));
}

void TargetUnitTest::pluggingInThePanelDoesNotStartAStoppedService()
{
    QVERIFY(restartDaemon());
    QVERIFY(Unit::stop(Unit::daemon));
    device().unplug(0);
    WAIT_FOR(!TargetDevice::isPlugged(0));
    device().plug(0);
    WAIT_FOR(TargetDevice::isPlugged(0));
    QCOMPARE(Command::shell(QStringLiteral("udevadm settle && systemctl list-jobs --no-legend")).output,
             QString());
    QCOMPARE(Unit::property(Unit::daemon, QStringLiteral("ActiveState")), QStringLiteral("inactive"));
    QVERIFY(restartDaemon());
    verifyServing();
}

void TargetUnitTest::anEndedBusIsRestartedWithTheDaemon()
{
    const QString bus = QStringLiteral("dbus.service");
    const int process = Unit::mainProcess(Unit::daemon);
    QVERIFY(Unit::control({QStringLiteral("kill"), QStringLiteral("--signal=KILL"), bus}));
    WAIT_FOR(!Unit::isActive(bus) && !Unit::isActive(Unit::daemon));
    WAIT_FOR(!TargetDevice::isReady()); // removed last, when the unit is no longer active
    // The first call starts the bus.
    QCOMPARE(Command::shell(QStringLiteral("busctl list >/dev/null")).output, QString());
    WAIT_FOR(Unit::isActive(Unit::daemon));
    QVERIFY(reconnect());
    verifyServing();
    QVERIFY(Unit::mainProcess(Unit::daemon) != process);
}

QTEST_GUILESS_MAIN(TargetUnitTest)
#include "TargetUnitTest.moc"

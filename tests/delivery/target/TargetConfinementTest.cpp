// SPDX-License-Identifier: MIT
#include "tests/delivery/target/Command.h"
#include "tests/delivery/target/TargetTest.h"
#include "tests/support/Waiting.h"

#include <array>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace {

const QString library = QStringLiteral("/usr/local/lib/arm-linux-gnueabihf/libQt5DBus.so.5");
const QString dropIn = QStringLiteral("/run/systemd/system/keyboard-handler.service.d/test.conf");

QString statusLine(int process, const QString& name)
{
    return Command::shell(QStringLiteral("sed -n 's/^%1:\\s*//p' /proc/%2/status").arg(name).arg(process))
        .output.simplified();
}

/// Opens the node as root for reading and writing, optionally in the unit's control group.
Command::Result openNode(const QString& node, bool inUnit)
{
    const QString move = QStringLiteral("echo $$ >/sys/fs/cgroup%1/cgroup.procs && ")
                             .arg(Unit::property(Unit::daemon, QStringLiteral("ControlGroup")));
    return Command::shell((inUnit ? move : QString()) + QStringLiteral(": <>") + node);
}

Command::Result simulateMenu(const QString& user)
{
    return Command::shell(
        QStringLiteral("runuser -u %1 -- busctl --system call com.vantre.KeyboardHandler / "
                       "com.vantre.KeyboardHandler process 'a{sv}' 4 commandId s SimulateKey "
                       "senderId s WwwApi actionId s Released key s Menu")
            .arg(user));
}

} // namespace

/// Tests the restrictions of the installed daemon and of its clients.
class TargetConfinementTest : public TargetTest
{
    Q_OBJECT

private Q_SLOTS:
    void theDaemonHasNoPrivileges();
    void theUnitAllowsOnlyThePanel_data();
    void theUnitAllowsOnlyThePanel();
    void onlyTheServicesGroupMaySendCommands_data();
    void onlyTheServicesGroupMaySendCommands();
    void librariesElsewhereNeedALineInTheUnit();
    void theConsoleExampleServesASerialLine();

private:
    /// Restarts the daemon with the output of this command as a drop-in of its unit.
    bool restartDaemonWith(const QString& dropInMaker);
};

void TargetConfinementTest::theDaemonHasNoPrivileges()
{
    const int process = Unit::mainProcess(Unit::daemon);
    const QString user = Command::shell(QStringLiteral("id -u keyboard-handler")).output.trimmed();
    QCOMPARE(statusLine(process, QStringLiteral("Uid")), QStringList({user, user, user, user}).join(' '));
    for (const char* set : {"CapInh", "CapPrm", "CapEff", "CapBnd", "CapAmb"}) {
        QCOMPARE(statusLine(process, QLatin1String(set)), QStringLiteral("0000000000000000"));
    }
    QCOMPARE(statusLine(process, QStringLiteral("NoNewPrivs")), QStringLiteral("1"));
    QCOMPARE(statusLine(process, QStringLiteral("Seccomp")), QStringLiteral("2"));
}

void TargetConfinementTest::theUnitAllowsOnlyThePanel_data()
{
    QTest::addColumn<bool>("allowed");
    QTest::newRow("/dev/input/event0") << true;
    QTest::newRow("/dev/input/event1") << true;
    QTest::newRow("/dev/null") << true;
    QTest::newRow("/dev/uinput") << false;
    QTest::newRow("/dev/kmsg") << false;
    QTest::newRow("/dev/loop0") << false;
}

void TargetConfinementTest::theUnitAllowsOnlyThePanel()
{
    QFETCH(bool, allowed);
    const QString node = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(openNode(node, false).output, QString());
    const Command::Result opened = openNode(node, true);
    QVERIFY2(allowed ? opened.status == 0 : opened.output.contains(QLatin1String("Operation not permitted")),
             qPrintable(opened.output));
}

void TargetConfinementTest::onlyTheServicesGroupMaySendCommands_data()
{
    QTest::addColumn<bool>("allowed");
    QTest::newRow("root") << true;
    QTest::newRow("state-handler") << true; // in the group
    QTest::newRow("nobody") << false;
}

void TargetConfinementTest::onlyTheServicesGroupMaySendCommands()
{
    QFETCH(bool, allowed);
    const QString announcement = QStringLiteral("announce SingleKey UserMenu WwwApi Menu");
    QVERIFY(restartDaemon());
    const Command::Result command = simulateMenu(QString::fromLatin1(QTest::currentDataTag()));
    QCOMPARE(command.status == 0, allowed);
    QVERIFY2(command.output.contains(QLatin1String(allowed ? "Success" : "Access denied")),
             qPrintable(command.output));
    // A refused command has no effect: the next key has no sender.
    QVERIFY(nextKeyWorks());
    const Observations observed = device().observations();
    QCOMPARE(std::any_of(observed.begin(), observed.end(),
                         [&](const Observation& observation) { return observation.text == announcement; }),
             allowed);
}

void TargetConfinementTest::librariesElsewhereNeedALineInTheUnit()
{
    QCOMPARE(
        Command::shell(QStringLiteral("install -D /usr/lib/*/libQt5DBus.so.5 %1 && ldconfig").arg(library))
            .output,
        QString());
    device().restartObserving();
    QVERIFY(!Unit::restart(Unit::daemon));
    const QString refusal =
        QStringLiteral("/usr/sbin/keyboard-handler: error while loading shared libraries: "
                       "libQt5DBus.so.5: failed to map segment from shared object");
    QVERIFY(logWith(refusal).join('\n').contains(refusal));

    QVERIFY(restartDaemonWith(QStringLiteral("printf '[Service]\\nExecPaths=/usr/local/lib\\n'")));
    const QString maps = QStringLiteral("grep -q %1 /proc/%2/maps");
    QCOMPARE(Command::shell(maps.arg(library).arg(Unit::mainProcess(Unit::daemon))).status, 0);
    QVERIFY(nextKeyWorks());
    QCOMPARE(Command::shell(QStringLiteral("rm %1 && ldconfig").arg(library)).status, 0);
}

void TargetConfinementTest::theConsoleExampleServesASerialLine()
{
    const int line = posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK);
    QVERIFY(line != -1 && unlockpt(line) == 0);
    QVERIFY(restartDaemonWith(QStringLiteral("sed s,/dev/ttyS0,%1, "
                                             "/usr/share/doc/keyboard-handler/examples/serial-console.conf")
                                  .arg(QString::fromLocal8Bit(ptsname(line)))));
    QVERIFY(write(line, "HELP 7\n", 7) == 7);
    QByteArray output;
    const auto isAnswered = [&] {
        std::array<char, 4096> buffer{};
        output.append(buffer.data(), int(std::max<ssize_t>(0, read(line, buffer.data(), buffer.size()))));
        return output.contains("\"SimulateKey\" params: [KeyActionId id] [KeyId id]");
    };
    WAIT_FOR(isAnswered());
    QVERIFY(nextKeyWorks());
    // Ctrl-C ends the daemon, and systemd restarts it.
    const int process = Unit::mainProcess(Unit::daemon);
    QVERIFY(write(line, "\x03", 1) == 1);
    WAIT_FOR(Unit::mainProcess(Unit::daemon) != process && Unit::isActive(Unit::daemon));
    verifyServing();
    // Before the line is closed.
    QVERIFY(restartDaemonWith(QStringLiteral(":")));
    close(line);
}

bool TargetConfinementTest::restartDaemonWith(const QString& dropInMaker)
{
    const auto made =
        Command::shell(QStringLiteral("mkdir -p $(dirname %1) && %2 >%1 && systemctl daemon-reload")
                           .arg(dropIn, dropInMaker));
    return made.status == 0 && restartDaemon();
}

QTEST_GUILESS_MAIN(TargetConfinementTest)
#include "TargetConfinementTest.moc"

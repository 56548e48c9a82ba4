// SPDX-License-Identifier: MIT
#include "control/Status.h"
#include "tests/control/ControlProgram.h"
#include "tests/support/BusPeer.h"
#include "tests/support/ListeningSocket.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QTemporaryDir>

#include <list>

#include <signal.h>
#include <unistd.h>

namespace {

const QString lastKey = QStringLiteral("last-key");
const QString name = ls::busName(ls::ServiceId::KeyboardHandler);

void succeed(const BusPeer& self, const QDBusMessage& call)
{
    self.reply(call, {QVariantMap{{"errorId", "Undefined"}, {"resultId", "Success"}, {"key", 139}}});
}

} // namespace

/// What keyboard-handlerctl says when a command cannot be sent or is not answered.
class ControlFaultsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void noBus();
    void busThatAcceptsAndHangs();
    void busThatHangsBeforeTheDaemonAnswers();
    void noDaemon();
    void daemonThatWaitsForServices();
    void daemonsOfOtherPrefixes();
    void daemonThatHangs();
    void daemonThatEndsBeforeItAnswers();
    void busThatEndsBeforeTheDaemonAnswers();
    void refusal();
    void responsesThatAreNotUnderstood_data();
    void responsesThatAreNotUnderstood();
    void charactersThatTheTerminalLacksAreEscaped();
};

void ControlFaultsTest::noBus()
{
    ControlProgram run("unix:path=/tmp/no-such-bus", {lastKey});
    QCOMPARE(run.status(), int(control::NoBus));
    QCOMPARE(QString::fromUtf8(run.err()),
             QStringLiteral("There is no connection to the system bus (/tmp/no-such-bus: No such "
                            "file or directory). See systemctl status dbus, and "
                            "DBUS_SYSTEM_BUS_ADDRESS if it is set.\n"));
}

void ControlFaultsTest::busThatAcceptsAndHangs()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("bus");
    const int bus = listenAt(path);
    const QString address = "unix:path=" + path;
    std::list<ControlProgram> runs;
    for (const QStringList& verb : {QStringList{lastKey}, QStringList{"monitor"}, QStringList{"record"},
                                    QStringList{"record", "--serve"}}) {
        runs.emplace_back(address, verb);
        runs.back().start();
    }
    for (ControlProgram& run : runs) {
        QCOMPARE(run.status(), int(control::NoBus));
        QCOMPARE(QString::fromUtf8(run.err()),
                 QStringLiteral("There is no connection to the system bus (%1 accepts clients, but does not "
                                "respond: the bus hangs). See systemctl status dbus, and "
                                "DBUS_SYSTEM_BUS_ADDRESS if it is set.\n")
                     .arg(path));
    }
    ::close(bus);
}

void ControlFaultsTest::busThatHangsBeforeTheDaemonAnswers()
{
    PrivateBus bus;
    const auto process =
        pid_t(QDBusConnection::systemBus().interface()->servicePid("org.freedesktop.DBus").value());
    const BusPeer daemon(bus, name,
                         [process](const BusPeer&, const QDBusMessage&) { ::kill(process, SIGSTOP); });
    ControlProgram run(bus.address(), {lastKey, "--timeout", "1"});
    const int status = run.status();
    QCOMPARE(::kill(process, SIGCONT), 0);
    QCOMPARE(status, int(control::NoBus));
    QCOMPARE(run.err(), QByteArray("The system bus does not answer: it hangs. See systemctl status dbus.\n"));
}

void ControlFaultsTest::noDaemon()
{
    QVERIFY(prepare());
    ControlProgram run(device().bus().address(), {lastKey});
    QCOMPARE(run.status(), int(control::NoDaemon));
    QCOMPARE(QString::fromUtf8(run.err()),
             QStringLiteral("No daemon owns the bus name %1. It does not run; see systemctl status "
                            "keyboard-handler.\n")
                 .arg(name));
}

void ControlFaultsTest::daemonThatWaitsForServices()
{
    options.dependenciesReady = false;
    QVERIFY(prepare());
    QVERIFY(device().startDaemon());
    ControlProgram run(device().bus().address(), {lastKey},
                       {"--bind", device().folder().runFolder(), "/run"});
    QCOMPARE(run.status(), int(control::NotReady));
    QCOMPARE(QString::fromUtf8(run.err()),
             QStringLiteral("No daemon owns the bus name %1. It runs and waits for these services: "
                            "state-handler, speechd.\n")
                 .arg(name));
}

void ControlFaultsTest::daemonsOfOtherPrefixes()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer first(bus, "net.other.KeyboardHandler", &succeed);
    const BusPeer second(bus, "org.other.KeyboardHandler", &BusPeer::hang);
    ControlProgram built(bus.address(), {lastKey});
    QCOMPARE(built.status(), int(control::NoDaemon));
    QCOMPARE(QString::fromUtf8(built.err()),
             QStringLiteral("No daemon owns the bus name %1. There are daemons with other prefixes: "
                            "--prefix net.other or --prefix org.other.\n")
                 .arg(name));
    ControlProgram other(bus.address(), {lastKey, "--prefix", "net.other"});
    QCOMPARE(other.status(), int(control::Done));
    QCOMPARE(other.out(), QByteArray("Menu (139)\n"));
    QCOMPARE(first.calls().first().interface(), QStringLiteral("net.other.KeyboardHandler"));
    QCOMPARE(second.calls().size(), 0);
}

void ControlFaultsTest::daemonThatHangs()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, name, &BusPeer::hang);
    ControlProgram run(bus.address(), {lastKey, "--timeout", "1"});
    QCOMPARE(run.status(), int(control::NoAnswer));
    QCOMPARE(QString::fromUtf8(run.err()),
             QStringLiteral("The daemon owns %1 and did not answer in 1 s: it hangs, or its start is not "
                            "complete. See systemctl status keyboard-handler.\n")
                 .arg(name));
}

void ControlFaultsTest::daemonThatEndsBeforeItAnswers()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, name, [](const BusPeer& self, const QDBusMessage&) { self.vanish(); });
    ControlProgram run(bus.address(), {lastKey});
    QCOMPARE(run.status(), int(control::NoDaemon));
    QCOMPARE(QString::fromUtf8(run.err()),
             QStringLiteral("The daemon ended before it answered; see systemctl status "
                            "keyboard-handler.\n"));
}

void ControlFaultsTest::busThatEndsBeforeTheDaemonAnswers()
{
    auto bus = std::make_unique<PrivateBus>(QStringList(), PrivateBus::Process::Unconnected);
    const BusPeer daemon(*bus, name, &BusPeer::hang);
    ControlProgram run(bus->address(), {lastKey});
    run.start();
    WAIT_FOR(!daemon.calls().isEmpty());
    bus.reset();
    QCOMPARE(run.status(), int(control::NoBus));
    QCOMPARE(run.err(), QByteArray("The system bus ended before the daemon answered.\n"));
}

void ControlFaultsTest::refusal()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, name, [](const BusPeer& self, const QDBusMessage& call) {
        self.reply(call, {QVariantMap{{"errorId", "Tired\x1b[2J"}, {"resultId", "Failure"}}});
    });
    ControlProgram people(bus.address(), {"simulate", "Help"});
    QCOMPARE(people.status(), int(control::Failed));
    QCOMPARE(people.err(), QByteArray("The daemon refuses SimulateKey: Tired\\u001b[2J.\n"));
    QCOMPARE(daemon.calls().size(), 1); // the release is not sent
    ControlProgram json(bus.address(), {"simulate", "Help", "--json"});
    QCOMPARE(json.status(), int(control::Failed));
    QCOMPARE(json.out(), QByteArray("{\"errorId\":\"Tired\\u001b[2J\",\"resultId\":\"Failure\"}\n"));
}

void ControlFaultsTest::responsesThatAreNotUnderstood_data()
{
    QTest::addColumn<QVariantList>("response");
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("an empty map") << QVariantList{QVariantMap()};
    QTest::newRow("a number") << QVariantList{139};
    QTest::newRow("an error of another type") << QVariantList{QVariantMap{{"errorId", QVariantMap()}}};
}

void ControlFaultsTest::responsesThatAreNotUnderstood()
{
    QFETCH(QVariantList, response);
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(
        bus, name, [response](const BusPeer& self, const QDBusMessage& call) { self.reply(call, response); });
    ControlProgram run(bus.address(), {"lists"});
    QCOMPARE(run.status(), int(control::Failed));
    QCOMPARE(run.err(), QByteArray("The daemon answers GetModifierKeyList without an errorId.\n"));
}

void ControlFaultsTest::charactersThatTheTerminalLacksAreEscaped()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, name, [](const BusPeer& self, const QDBusMessage& call) {
        self.reply(call, {QVariantMap{{"errorId", QStringLiteral("Müde\u20ac\U0001F600")}}});
    });
    const QByteArray begin = "The daemon refuses GetLastKey: ";
    ControlProgram ascii(bus.address(), {lastKey});
    ascii.setVariable("LC_ALL", "C");
    QCOMPARE(ascii.status(), int(control::Failed));
    QCOMPARE(ascii.err(), begin + "M\\u00fcde\\u20ac\\ud83d\\ude00.\n");
    ControlProgram utf8(bus.address(), {lastKey});
    QCOMPARE(utf8.status(), int(control::Failed));
    QCOMPARE(utf8.err(), begin + "M\xc3\xbc"
                                 "de\xe2\x82\xac\xf0\x9f\x98\x80.\n");
}

QTEST_GUILESS_MAIN(ControlFaultsTest)
#include "ControlFaultsTest.moc"

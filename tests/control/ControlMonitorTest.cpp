// SPDX-License-Identifier: MIT
#include "control/Status.h"
#include "tests/control/ControlProgram.h"
#include "tests/control/PanelNodes.h"
#include "tests/support/BusPeer.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/Waiting.h"
#include "tests/whole/system/SystemTest.h"

#include <ls/BusNames.h>

#include <QDBusMessage>
#include <QJsonDocument>
#include <QJsonObject>

#include <signal.h>

namespace {

const QString daemonName = ls::busName(ls::ServiceId::KeyboardHandler);
const QString stateHandlerName = ls::busName(ls::ServiceId::StateHandler);
const QString speechName = ls::busName("SpeechDaemon");

const QString followed = QStringLiteral("from here on, the rules of each key are named");

QVariantMap notification(const QString& action, const QString& receiver = ls::ServiceId::UserMenu)
{
    return {{"notificationId", "KeyboardChange"},
            {"actionId", action},
            {"receiverId", receiver},
            {"senderId", "KeyboardHandler"},
            {"firstKey", "Help"}};
}

QVariantMap stateChange(const QString& state)
{
    return {{"notificationId", "StateChange"},
            {"actionId", "Undefined"},
            {"senderId", "StateHandler"},
            {"stateId", state}};
}

void denyMonitoring(const PrivateBus& bus)
{
    QFile file(QFileInfo(bus.socketPath()).path() + "/bus.conf");
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QByteArray policy = file.readAll().replace(
        "<allow own", "<deny send_interface=\"org.freedesktop.DBus.Monitoring\"/><allow own");
    QVERIFY(file.seek(0) && file.write(policy) == policy.size() && file.flush());
    const QDBusMessage reload = QDBusMessage::createMethodCall(
        "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReloadConfig");
    QCOMPARE(QDBusConnection::systemBus().call(reload).type(), QDBusMessage::ReplyMessage);
}

} // namespace

/// keyboard-handlerctl monitor.
class ControlMonitorTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void keysAndStatesAreShownWithTheirTimes();
    void jsonLinesHaveTheWholeNotification();
    void monitorsDoNotChangeTheSender();
    void restartOfTheDaemonIsShown();
    void endOfTheBusEndsTheMonitor();
    void onlyAnnouncementsToTheReceiverAreShown();
    void hostileTextsAreHarmless();
    void stateHandlerWithoutAnswerDoesNotHoldUpAnnouncements();
    void refusedQuestionsNameTheRight();
    void changeOfTheStateIsNewerThanTheAnswer();
    void changesThatTheDaemonIgnoresAreMarked();
    void speechRequestsAreShown();
    void speechOfAnotherShapeIsHarmless();
    void speechTakesTheRightToMonitorTheBus();
    void slowReaderLosesLinesAndLearnsHowMany();
    void linesThatAreTooLongAreCounted();
    void brokenPipeEndsTheMonitor();
    void outputsThatCannotBeWrittenAreReported_data();
    void outputsThatCannotBeWrittenAreReported();
    void interruptEndsTheMonitor();
    void absentBusIsReported();
    void unknownReceiverIsRefused();
    void rulesOfKeysAreNamed();
    void announcementsThatKeysDoNotExplainAreMarked();
    void floodsOfAnnouncementsAreNotKept();
    void listsThatAreNewerThanTheDaemonAreNamed();
    void inputDevicesThatAreMissingAreReported();

private:
    bool launchWithNodes();
    ControlProgram monitorOfKeys();
    static void awaitLine(ControlProgram& monitor, const QString& end);
    static void startListening(ControlProgram& monitor, const QString& state);

    std::unique_ptr<PanelNodes> m_nodes;
};

void ControlMonitorTest::awaitLine(ControlProgram& monitor, const QString& end)
{
    const QRegularExpression form(end + '$');
    Waiting::until([&] { return !monitor.isRunning() || !monitor.lines().filter(form).isEmpty(); },
                   [&] { return monitor.out(); }, {"a line", __FILE__, __LINE__});
    if (!monitor.isRunning()) {
        qWarning("the monitor ended: %s", monitor.err().constData());
    }
}

/// The state comes after the subscription.
void ControlMonitorTest::startListening(ControlProgram& monitor, const QString& state)
{
    monitor.start();
    awaitLine(monitor, "the state is " + state);
}

void ControlMonitorTest::keysAndStatesAreShownWithTheirTimes()
{
    QVERIFY(launch());
    ControlProgram monitor(device().bus().address(), {"monitor"});
    startListening(monitor, "Idle");
    tap(ls::KeyId::Menu);
    awaitLine(monitor, "announces SingleKey to UserMenu, with Menu; sender \"\"");
    device().setState(ls::StateId::Print);
    awaitLine(monitor, "the state is Print");
    QStringList words;
    for (const QString& line : monitor.lines()) {
        static const QRegularExpression form("^\\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d  (.*)$");
        words << form.match(line).captured(1);
    }
    QCOMPARE(words,
             (QStringList{daemonName + " is on the bus", "the state is Idle",
                          "announces SingleKey to UserMenu, with Menu; sender \"\"", "the state is Print"}));
}

void ControlMonitorTest::jsonLinesHaveTheWholeNotification()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor", "--json"});
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 2);
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1);
    daemon.announce({notification("PaperStatus")});
    WAIT_FOR_EQUAL(monitor.lines().size(), 3);
    QJsonObject line = QJsonDocument::fromJson(monitor.lines().at(2).toUtf8()).object();
    const QDateTime time = QDateTime::fromString(line.take("time").toString(), Qt::ISODateWithMs);
    QVERIFY(time >= before && time <= QDateTime::currentDateTime());
    QCOMPARE(line, (QJsonObject{{"kind", "announcement"},
                                {"notification", QJsonObject::fromVariantMap(notification("PaperStatus"))}}));
    QVERIFY(monitor.lines().at(0).contains("\"isRunning\":true,\"kind\":\"service\""));
    QVERIFY(monitor.lines().at(1).contains("\"kind\":\"state\",\"stateId\":null"));
}

/// Any command would change it, even one that fails.
void ControlMonitorTest::monitorsDoNotChangeTheSender()
{
    QVERIFY(launch());
    ControlProgram before(device().bus().address(), {"monitor"});
    startListening(before, "Idle");
    command(ls::KeyboardHandlerCmdId::GetLastKey);
    ControlProgram between(device().bus().address(), {"monitor"});
    startListening(between, "Idle");
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction("announce SingleKey UserMenu ServiceTool Menu"));
    ControlProgram after(device().bus().address(), {"monitor"});
    startListening(after, "Idle");
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction("announce SingleKey UserMenu KeyboardHandler Menu"));
    awaitLine(after, "announces SingleKey to UserMenu, with Menu; sender KeyboardHandler");
    QVERIFY(after.isRunning());
}

void ControlMonitorTest::restartOfTheDaemonIsShown()
{
    QVERIFY(launch());
    ControlProgram monitor(device().bus().address(), {"monitor"});
    startListening(monitor, "Idle");
    device().stopDaemon();
    awaitLine(monitor, daemonName + " leaves the bus");
    QVERIFY(launch());
    awaitLine(monitor, daemonName + " comes to the bus");
    tap(ls::KeyId::Menu);
    awaitLine(monitor, "announces SingleKey to UserMenu, with Menu; sender \"\"");
    QVERIFY(monitor.isRunning());
}

void ControlMonitorTest::endOfTheBusEndsTheMonitor()
{
    QVERIFY(launch());
    ControlProgram monitor(device().bus().address(), {"monitor"});
    startListening(monitor, "Idle");
    device().bus().stop();
    QCOMPARE(monitor.status(), int(control::NoBus));
    QVERIFY(monitor.lines().last().endsWith("the system bus ended"));
}

void ControlMonitorTest::onlyAnnouncementsToTheReceiverAreShown()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor", "--receiver", "PrintManager", "--receiver", "WwwApi"});
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 2);
    daemon.announce({notification("One", ls::ServiceId::UserMenu)});
    daemon.announce({notification("Two", ls::ServiceId::PrintManager)});
    daemon.announce({notification("Three", ls::ServiceId::WwwApi)});
    awaitLine(monitor, "announces Three to WwwApi, with Help; sender KeyboardHandler");
    QCOMPARE(monitor.lines().size(), 4);
}

void ControlMonitorTest::hostileTextsAreHarmless()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    ControlProgram people(bus.address(), {"monitor"});
    ControlProgram json(bus.address(), {"monitor", "--json"});
    people.start();
    json.start();
    WAIT_FOR(people.lines().size() == 2 && json.lines().size() == 2);
    daemon.announce({});
    daemon.announce({QStringLiteral("text")});
    daemon.announce({QVariantMap{{"actionId", QVariantMap()}, {"kind", "state"}}});
    daemon.announce({notification(QStringLiteral("\x1b]0;title\x07\n\u202e\u009b2J"))});
    WAIT_FOR(people.lines().size() == 6 && json.lines().size() == 6);
    QVERIFY(people.lines().at(3).endsWith("announces \"\" to \"\", with \"\"; sender \"\""));
    QVERIFY(people.lines().at(5).endsWith(
        "announces \\u001b]0;title\\u0007\\u000a\\u202e\\u009b2J to UserMenu, with Help; sender "
        "KeyboardHandler"));
    for (const QString& line : json.lines()) {
        QVERIFY(QJsonDocument::fromJson(line.toUtf8()).isObject());
        QVERIFY(!line.contains('\x1b') && !line.contains(QChar(0x202e)) && !line.contains(QChar(0x9b)));
    }
    QVERIFY(json.lines().at(4).contains("\"kind\":\"announcement\""));
    const QJsonObject last = QJsonDocument::fromJson(json.lines().at(5).toUtf8()).object();
    QCOMPARE(last["notification"].toObject()["actionId"].toString(),
             QStringLiteral("\x1b]0;title\x07\n\u202e\u009b2J"));
}

void ControlMonitorTest::stateHandlerWithoutAnswerDoesNotHoldUpAnnouncements()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    const BusPeer stateHandler(bus, stateHandlerName, &BusPeer::hang);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.start();
    WAIT_FOR_EQUAL(stateHandler.calls().size(), 1);
    daemon.announce({notification("One")});
    awaitLine(monitor, "announces One to UserMenu, with Help; sender KeyboardHandler");
    QCOMPARE(monitor.lines().size(), 2);
    QCOMPARE(daemon.calls().size(), 0);
}

void ControlMonitorTest::refusedQuestionsNameTheRight()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer stateHandler(bus, stateHandlerName, [](const BusPeer& self, const QDBusMessage& call) {
        self.refuse(call, "org.freedesktop.DBus.Error.AccessDenied", "no");
    });
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.start();
    awaitLine(monitor, "the state is not known: the bus does not let you ask the state handler; root may");
}

void ControlMonitorTest::changeOfTheStateIsNewerThanTheAnswer()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    const BusPeer stateHandler(bus, stateHandlerName, &BusPeer::hang);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.start();
    WAIT_FOR_EQUAL(stateHandler.calls().size(), 1);
    stateHandler.announce({stateChange(ls::StateId::Print)});
    awaitLine(monitor, "the state is Print");
    stateHandler.vanish(); // the bus answers in its place
    awaitLine(monitor, stateHandlerName + " leaves the bus");
    daemon.announce({notification("One")});
    awaitLine(monitor, "announces One to UserMenu, with Help; sender KeyboardHandler");
    QVERIFY(!monitor.out().contains("not known"));
}

/// The monitor must not follow a state that the daemon does not have.
void ControlMonitorTest::changesThatTheDaemonIgnoresAreMarked()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer stateHandler(bus, stateHandlerName);
    ControlProgram monitor(bus.address(), {"monitor", "--json"});
    monitor.start();
    WAIT_FOR_EQUAL(stateHandler.calls().size(), 1);
    QVariantMap incomplete = stateChange(ls::StateId::Print);
    incomplete.remove("senderId");
    stateHandler.announce({incomplete});
    stateHandler.announce({stateChange("Paused")});
    stateHandler.announce({stateChange(ls::StateId::Error)});
    WAIT_FOR_EQUAL(monitor.lines().size(), 4);
    const auto line = [&](int index) {
        return QJsonDocument::fromJson(monitor.lines().at(index).toUtf8()).object();
    };
    QCOMPARE(line(1)["ignored"].toObject(), QJsonObject::fromVariantMap(incomplete));
    QCOMPARE(line(2)["ignored"].toObject()["stateId"].toString(), QStringLiteral("Paused"));
    QVERIFY(!line(2).contains("stateId"));
    QCOMPARE(line(3)["stateId"].toString(), ls::StateId::Error);
}

void ControlMonitorTest::speechRequestsAreShown()
{
    QVERIFY(launch());
    ControlProgram people(device().bus().address(), {"monitor"});
    ControlProgram json(device().bus().address(), {"monitor", "--json"});
    startListening(people, "Idle");
    json.start();
    WAIT_FOR_EQUAL(json.lines().size(), 2);
    tap(ls::KeyId::Help);
    awaitLine(people, "announces SingleKey to UserMenu, with Help; sender \"\"");
    awaitLine(people, "  speaks \"Help\"");
    WAIT_FOR(!json.lines().filter("\"kind\":\"speech\"").filter("\"speakFromId\"").isEmpty());
    const QStringList lines = json.lines().filter("\"speakFromId\"");
    const QJsonObject line = QJsonDocument::fromJson(lines.first().toUtf8()).object();
    QCOMPARE(line["request"].toObject().keys(), (QStringList{"sentenceId", "serviceId"}));
    QVERIFY(line.contains("time"));
}

void ControlMonitorTest::speechOfAnotherShapeIsHarmless()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer speech(bus, speechName);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 2);
    daemon.call(speechName, "speakFromId", {});
    daemon.call(speechName, "speakFromId", {QStringLiteral("\x1b[2J")});
    daemon.call(speechName, "speakFromId", {QVariantMap{{"a\x1b[2J", QVariantMap()}, {"serviceId", 0.5}}});
    daemon.call(speechName, "speakFromId",
                {QVariantMap{{"serviceId", 0}, {"sentenceId", 24}, {"arguments", QStringList{"\x1b[2J"}}}});
    daemon.call(speechName, "cancelAll", {});
    awaitLine(monitor, "  cancels earlier speech");
    QCOMPARE(monitor.lines().size(), 7);
    QVERIFY(!monitor.out().contains('\x1b'));
    QVERIFY(monitor.lines().at(4).contains("\\u001b[2J"));
    QVERIFY(monitor.lines().at(5).endsWith("speaks \"Up\", with \\u001b[2J"));
}

void ControlMonitorTest::speechTakesTheRightToMonitorTheBus()
{
    PrivateBus bus;
    denyMonitoring(bus);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 3);
    const QRegularExpression form(
        "  Speech is not shown, because the bus does not let you monitor it \\(.+\\); "
        "root may\\.$");
    QCOMPARE(monitor.lines().filter(form).size(), 1);
    daemon.announce({notification("One")});
    awaitLine(monitor, "announces One to UserMenu, with Help; sender KeyboardHandler");
}

void ControlMonitorTest::slowReaderLosesLinesAndLearnsHowMany()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor", "--json"});
    // The reader waits until all is announced.
    monitor.setShell("\"$0\" \"$@\" | { read -r first; read -r second; echo \"$first\"; echo \"$second\"; "
                     "until [ -e /tmp/read ]; do sleep 0.01; done; exec cat; }");
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 2);
    constexpr int count = 400;
    for (int i = 0; i < count; ++i) {
        daemon.announce({notification(QString(2000, 'x'))});
    }
    daemon.synchronise();
    // The monitor asks a state handler that joins the bus after it has taken the announcements.
    const BusPeer stateHandler(bus, stateHandlerName);
    WAIT_FOR(!stateHandler.calls().isEmpty());
    QFile read("/tmp/read");
    QVERIFY(read.open(QIODevice::WriteOnly));
    daemon.announce({notification("Last")});
    WAIT_FOR(monitor.lines().filter("\"actionId\":\"Last\"").size() == 1 ||
             monitor.lines().filter("\"kind\":\"loss\"").size() > 0);
    int lost = 0;
    WAIT_FOR(([&] {
        lost = 0;
        int shown = 0;
        for (const QString& line : monitor.lines().mid(2)) {
            const QJsonObject object = QJsonDocument::fromJson(line.toUtf8()).object();
            lost += object["count"].toInt();
            shown += object["kind"] == "announcement" ? 1 : 0;
        }
        return lost + shown == count + 1;
    }()));
    QVERIFY(lost > 0);
}

void ControlMonitorTest::linesThatAreTooLongAreCounted()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 2);
    daemon.announce({notification(QString(1'000'000, 'x'))});
    daemon.announce({notification("Last")});
    awaitLine(monitor, "announces Last to UserMenu, with Help; sender KeyboardHandler");
    QVERIFY(monitor.lines().at(2).endsWith("  1 lines are missing: they were not read in time, or too long"));
}

void ControlMonitorTest::brokenPipeEndsTheMonitor()
{
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer daemon(bus, daemonName);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.setShell(
        "{ \"$0\" \"$@\"; echo $? >&2; } | { read -r first; read -r second; echo \"$second\"; }");
    monitor.start();
    WAIT_FOR_EQUAL(monitor.lines().size(), 1);
    // The reader may end a little later.
    WAIT_FOR(([&] {
        daemon.announce({notification("One")});
        return !monitor.isRunning();
    }()));
    QCOMPARE(monitor.err(), QByteArray("141\n"));
}

void ControlMonitorTest::outputsThatCannotBeWrittenAreReported_data()
{
    QTest::addColumn<QString>("shell");
    QTest::newRow("full disk") << "exec \"$0\" \"$@\" >/dev/full";
    QTest::newRow("closed") << "exec \"$0\" \"$@\" >&-";
    QTest::newRow("all closed but that of errors") << "exec \"$0\" \"$@\" <&- >&-";
}

/// A socket that gets the number of a closed output would get the lines.
void ControlMonitorTest::outputsThatCannotBeWrittenAreReported()
{
    QFETCH(QString, shell);
    const PrivateBus bus({}, PrivateBus::Process::Unconnected);
    ControlProgram monitor(bus.address(), {"monitor"});
    monitor.setShell(shell);
    QCOMPARE(monitor.status(), int(control::Unusable));
    QCOMPARE(monitor.err(), QByteArray("The output could not be written.\n"));
}

void ControlMonitorTest::interruptEndsTheMonitor()
{
    QVERIFY(launch());
    ControlProgram monitor(device().bus().address(), {"monitor"});
    startListening(monitor, "Idle");
    QCOMPARE(::kill(static_cast<pid_t>(monitor.processId()), SIGINT), 0);
    QCOMPARE(monitor.status(), 128 + SIGINT);
    QCOMPARE(monitor.err(), QByteArray());
    QVERIFY(monitor.out().endsWith('\n'));
}

void ControlMonitorTest::absentBusIsReported()
{
    ControlProgram monitor("unix:path=/tmp/no-such-bus", {"monitor"});
    QCOMPARE(monitor.status(), int(control::NoBus));
    QVERIFY(monitor.err().startsWith("There is no connection to the system bus"));
    PrivateBus bus({}, PrivateBus::Process::Unconnected);
    const BusPeer other(bus, "net.other.KeyboardHandler");
    ControlProgram waiting(bus.address(), {"monitor"});
    waiting.start();
    awaitLine(waiting, "No daemon owns the bus name " + daemonName +
                           ". There are daemons with other prefixes: --prefix net.other.");
    QVERIFY(waiting.isRunning());
}

void ControlMonitorTest::unknownReceiverIsRefused()
{
    ControlProgram monitor("unix:path=/tmp/no-such-bus", {"monitor", "--receiver", "NoSuchService"});
    QCOMPARE(monitor.status(), int(control::Unusable));
    QVERIFY(monitor.err().contains("NoSuchService"));
}

bool ControlMonitorTest::launchWithNodes()
{
    options.keyLists = {{"modifierKeyList.json",
                         R"({"ModifierKeys": [{"keys": ["Help", "Ok"], "eAction": "Both",)"
                         R"( "receiverService": "UserMenu", "validOnState": "Idle"}]})"}};
    m_nodes = std::make_unique<PanelNodes>();
    if (!launch()) {
        return false;
    }
    m_nodes->follow(device().panel());
    return true;
}

ControlProgram ControlMonitorTest::monitorOfKeys()
{
    return {device().bus().address(), {"monitor", "--why"}, m_nodes->viewOf(device().folder())};
}

void ControlMonitorTest::rulesOfKeysAreNamed()
{
    QVERIFY(launchWithNodes());
    ControlProgram monitor = monitorOfKeys();
    monitor.start();
    awaitLine(monitor, followed);
    tap(ls::KeyId::Help);
    tap(ls::KeyId::Ok);
    awaitLine(monitor, "announces Both to UserMenu, with Help and Ok; sender \"\"");
    // The monitor may read a key after its announcement. The state must not change before.
    WAIT_FOR(monitor.out().contains(
        "Ok up             completes Both  [/var/lib/keyboard-handler/modifierKeyList.json:1]; "
        "Both is announced to UserMenu; "));
    device().setState(ls::StateId::Print);
    awaitLine(monitor, "the state is Print");
    command(ls::KeyboardHandlerCmdId::GetLastKey); // the daemon knows the state as well
    tap(ls::KeyId::Up);
    awaitLine(monitor, "announces SingleKey to PrintManager, with Up; sender ServiceTool");
    WAIT_FOR(monitor.out().contains("  Up up             Up is sent to PrintManager\n"));
    // Nothing is marked as unexplained, and the time of the window is said to pass.
    device().setState(ls::StateId::Idle);
    WAIT_FOR(monitor.lines().filter("the state is Idle").size() == 2);
    command(ls::KeyboardHandlerCmdId::GetLastKey);
    tap(ls::KeyId::Down);
    awaitLine(monitor, "announces SingleKey to UserMenu, with Down; sender ServiceTool");
    WAIT_FOR(monitor.out().contains("Down is sent to UserMenu"));
    QVERIFY(!monitor.out().contains("the rules are not named"));
}

void ControlMonitorTest::announcementsThatKeysDoNotExplainAreMarked()
{
    QVERIFY(launchWithNodes());
    ControlProgram monitor = monitorOfKeys();
    monitor.start();
    awaitLine(monitor, followed);
    // While a key is down, the monitor does not begin again.
    device().press(0, ls::KeyId::Menu);
    WAIT_FOR(monitor.out().contains("  Menu down "));
    command(ls::KeyboardHandlerCmdId::SimulateModifier, {{"keysList", QStringList{"Help", "Ok"}}});
    awaitLine(monitor,
              "the rules are not named until no key has been down for 1.6 s: \"announce Both UserMenu "
              "- Help Ok\" is not explained by the keys; a command may have come");
    device().release(0, ls::KeyId::Menu);
    awaitLine(monitor, "Menu up: no rules are named, because what came before is not known");
    WAIT_FOR_EQUAL(monitor.lines().filter(QRegularExpression(followed + '$')).size(), 2);
    QVERIFY(monitor.isRunning());
}

/// Without a limit, the monitor would say so 3 s after the first, when all of them have come.
void ControlMonitorTest::floodsOfAnnouncementsAreNotKept()
{
    QVERIFY(launchWithNodes());
    ControlProgram monitor = monitorOfKeys();
    monitor.start();
    awaitLine(monitor, followed);
    device().press(0, ls::KeyId::Menu); // so that the monitor does not begin again
    WAIT_FOR(monitor.out().contains("  Menu down "));
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        command(ls::KeyboardHandlerCmdId::SimulateModifier, {{"keysList", QStringList{"Help", "Ok"}}});
    }
    WAIT_FOR_EQUAL(monitor.lines().filter("announces Both to UserMenu").size(), count);
    QCOMPARE(monitor.lines().filter("is not explained by the keys").size(), 1);
}

void ControlMonitorTest::listsThatAreNewerThanTheDaemonAreNamed()
{
    QVERIFY(launchWithNodes());
    QFile list(device().folder().keyList("shortcutKeyList.json"));
    const QDateTime ready =
        QFileInfo(device().folder().runFolder() + "/service-watcher/keyboard-handler").lastModified();
    // The clock of files may be coarse.
    WAIT_FOR(([&] {
        const bool written = list.open(QIODevice::WriteOnly) && list.write("{}") == 2;
        list.close();
        return written && QFileInfo(list).metadataChangeTime() > ready;
    }()));
    ControlProgram monitor = monitorOfKeys();
    monitor.start();
    awaitLine(monitor, "shortcutKeyList.json is newer than the daemon, which may use other rows");
    QVERIFY(monitor.isRunning());
}

void ControlMonitorTest::inputDevicesThatAreMissingAreReported()
{
    QVERIFY(launchWithNodes());
    QVERIFY(QFile::remove(m_nodes->node(1)));
    ControlProgram monitor = monitorOfKeys();
    QCOMPARE(monitor.status(), int(control::Unusable));
    QVERIFY(monitor.err().startsWith("/dev/input/event1"));
}

QTEST_GUILESS_MAIN(ControlMonitorTest)
#include "ControlMonitorTest.moc"

// SPDX-License-Identifier: MIT
#include "simulator/device/ChildProcess.h"
#include "simulator/device/KeyboardClient.h"
#include "simulator/device/StateHandlerStandIn.h"
#include "simulator/script/KeyListJson.h"
#include "simulator/script/KeyScript.h"
#include "simulator/script/ObservationText.h"
#include "tests/delivery/policy/ForeignUser.h"
#include "tests/support/Waiting.h"

#include <ls/BusNames.h>
#include <ls/MessageKeys.h>
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QtTest>

#include <limits>
#include <map>

using namespace ls;

namespace {

constexpr int noTimeout = std::numeric_limits<int>::max();
constexpr uint nameExists = 3; // RequestName's reply if the name has an owner
constexpr uint doNotQueue = 4;
constexpr int menuCode = 139;

const QString daemonUser = QStringLiteral("keyboard-handler");
const QString stateHandlerUser = QStringLiteral("state-handler");
/// `service` and the daemon's user are members of the services' group; the last two users are not.
const QStringList users{QStringLiteral("root"), daemonUser, QStringLiteral("service"), stateHandlerUser,
                        QStringLiteral("nobody")};
const QStringList callers = users.mid(0, 3);
const QStringList noUsers;

const QString busAddress = QStringLiteral("unix:path=/run/dbus/system_bus_socket");
const QString driver = QStringLiteral("org.freedesktop.DBus");
const QString introspectable = driver + QStringLiteral(".Introspectable");
const QString accessDenied = driver + QStringLiteral(".Error.AccessDenied");
const QString keyboard = busName(ServiceId::KeyboardHandler);
const QString stateHandler = busName(ServiceId::StateHandler);
const QString successful = QStringLiteral("Undefined"); // the error of a successful command

QVariantMap success(const QString& key = {}, const QVariant& value = {})
{
    QVariantMap map{{errorIdKey, successful}, {resultIdKey, ResultId::Success}};
    if (!key.isEmpty()) {
        map.insert(key, value);
    }
    return map;
}

/// A row for each state; the action is the name of the state.
QVector<KeyRow> combinationOfEachState()
{
    QVector<KeyRow> rows;
    const QStringList states = StateId::meta.keys();
    for (const QString& state : states) {
        rows.append({KeyRow::Kind::Modifier, state, ServiceId::WwwApi, state, 0, {KeyId::Help, KeyId::Ok}});
    }
    return rows;
}

/// The list in the answer, including the combining time.
QVariantMap answeredList(const QString& fileName)
{
    KeyScript script;
    script.rows = combinationOfEachState();
    QVariantMap list =
        QJsonDocument::fromJson(KeyListJson::filesOf(script).value(fileName)).object().toVariantMap();
    list.insert(keyTimeouts, 1500);
    return list;
}

bool isBusy(const QString& state)
{
    return state != StateId::Idle && state != StateId::Startup;
}

struct CommandCase
{
    QString name;
    QVariantMap parameters;
    QVariantMap answer;
};

/// The commands, sent in the keyboard test after a release of Menu.
QVector<CommandCase> commandCases(const QString& state)
{
    const QVariantMap key{{actionIdKey, KeyActionId::Pressed}, {keyKey, KeyId::Up}};
    using namespace KeyboardHandlerCmdId;
    return {
        {GetLastKey, {}, success(keyKey, menuCode)},
        {GetLongKeysTimeout, {}, success(keyTimeouts, QVariantMap())},
        {GetModifierKeyList, {}, success(modifierKeyListKey, answeredList("modifierKeyList.json"))},
        {GetShortcutKeyList, {}, success(shortcutKeyListKey, answeredList("shortcutKeyList.json"))},
        {StartTestMode, {}, success()},
        // The test counts keys only in these states.
        {GetTestResult, {}, {{errorIdKey, successful}, {resultIdKey, isBusy(state) ? 1 : 0}}},
        {SimulateKey, key, success()},
        {SimulateModifier, {{keysListKey, QStringList{KeyId::Help, KeyId::Ok}}}, success()},
        {SimulateShortcut, {{keysListKey, QStringList{KeyId::Function, KeyId::Up}}}, success()},
    };
}

QDBusMessage call(const QString& service, const QString& interface, const QString& member,
                  const QVariantList& arguments = {})
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, busPath, interface, member);
    message.setArguments(arguments);
    return message;
}

QDBusMessage commandCall(const QString& name, QVariantMap parameters = {})
{
    parameters.insert(commandIdKey, name);
    parameters.insert(senderIdKey, ServiceId::ServiceTool);
    return call(keyboard, keyboard, QStringLiteral("process"), {parameters});
}

} // namespace

/// Checks each user's access to the daemon over the bus in each state. Runs as root with the users of
/// bus-policy.sh; its arguments are the daemon's executable, keyboard-handlerctl and those of QtTest.
class BusAccessTest : public QObject
{
    Q_OBJECT

public:
    BusAccessTest(const QString& daemon, const QString& control)
        : m_daemonPath(daemon), m_controlPath(control)
    {}

private Q_SLOTS:
    void initTestCase();
    void theCommands_data();
    void theCommands();
    void everythingElse_data();
    void everythingElse();
    void theSignal_data();
    void theSignal();
    void theControlProgram_data();
    void theControlProgram();
    void cleanupTestCase();

private:
    /// Sends `message` as `user` and runs the event loop until the reply or error arrives.
    QDBusMessage outcome(const QString& user, const QDBusMessage& message);
    /// Ends gestures and tests of earlier rows, then enters `state`.
    void reset(const QString& state);
    void enter(const QString& state);
    void command(const QString& name, const QVariantMap& parameters = {});
    void release(const QString& key);

    QString m_daemonPath;
    QString m_controlPath;
    std::map<QString, std::unique_ptr<BusConnection>> m_connections;
    StateHandlerStandIn m_stateHandler;
    ChildProcess m_daemon;
};

void BusAccessTest::initTestCase()
{
    for (const QString& user : users) {
        const ForeignUser foreigner(user.toLatin1());
        m_connections[user] = std::make_unique<BusConnection>(busAddress);
        QVERIFY2(m_connections[user]->get().isConnected(), qPrintable(user));
    }
    {
        const ForeignUser foreigner(stateHandlerUser.toLatin1());
        QVERIFY(m_stateHandler.appear(busAddress));
    }
    KeyScript script;
    script.rows = combinationOfEachState();
    QVERIFY(QDir().mkpath(QStringLiteral("/var/lib/keyboard-handler")));
    const auto lists = KeyListJson::filesOf(script);
    for (auto list = lists.cbegin(); list != lists.cend(); ++list) {
        QFile file(QStringLiteral("/var/lib/keyboard-handler/") + list.key());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(list.value()) == list.value().size());
    }
    m_daemon.setProcessChannelMode(QProcess::MergedChannels);
    m_daemon.start(QStringLiteral("setpriv"),
                   {QStringLiteral("--reuid"), daemonUser, QStringLiteral("--regid"), daemonUser,
                    QStringLiteral("--init-groups"), QStringLiteral("--inh-caps=-all"), m_daemonPath});
    WAIT_FOR(QFile::exists(QStringLiteral("/run/service-watcher/keyboard-handler")));
}

void BusAccessTest::theCommands_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariantMap>("parameters");
    QTest::addColumn<QVariantMap>("answer");
    const QStringList states = StateId::meta.keys();
    for (const QString& state : states) {
        for (const QString& user : users) {
            for (const CommandCase& one : commandCases(state)) {
                QTest::addRow("%s, %s: %s", qPrintable(state), qPrintable(user), qPrintable(one.name))
                    << state << user << one.name << one.parameters << one.answer;
            }
        }
    }
}

void BusAccessTest::theCommands()
{
    QFETCH(QString, state);
    QFETCH(QString, user);
    QFETCH(QString, name);
    QFETCH(QVariantMap, parameters);
    QFETCH(QVariantMap, answer);
    reset(state);
    command(KeyboardHandlerCmdId::StartTestMode);
    release(KeyId::Menu);
    const QDBusMessage reply = outcome(user, commandCall(name, parameters));
    if (callers.contains(user)) {
        QCOMPARE(reply.errorName(), QString());
        QCOMPARE(libvantre::dbusArgumentUnpack(reply.arguments().value(0)).toMap(), answer);
    } else {
        QCOMPARE(reply.errorName(), accessDenied);
    }
}

void BusAccessTest::everythingElse_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QDBusMessage>("message");
    QTest::addColumn<QStringList>("allowed");
    const QString peer = driver + QStringLiteral(".Peer");
    const QString properties = driver + QStringLiteral(".Properties");
    const QString request = QStringLiteral("RequestName");
    const QString introspect = QStringLiteral("Introspect");
    const QStringList stateHandlerCallers{daemonUser, stateHandlerUser};
    const QStringList states = StateId::meta.keys();
    for (const QString& state : states) {
        const auto row = [&](const char* what, const QDBusMessage& message, const QStringList& allowed) {
            QTest::addRow("%s: %s", qPrintable(state), what) << state << message << allowed;
        };
        row("Introspect", call(keyboard, introspectable, introspect), callers);
        row("Ping", call(keyboard, peer, QStringLiteral("Ping")), callers);
        row("Properties", call(keyboard, properties, QStringLiteral("GetAll"), {keyboard}), noUsers);
        row("the member notification",
            call(keyboard, keyboard, QStringLiteral("notification"), {QVariantMap()}), noUsers);
        row("owning the name", call(driver, driver, request, {keyboard, doNotQueue}), {daemonUser});
        row("owning a subname",
            call(driver, driver, request, {keyboard + QStringLiteral(".Panel"), doNotQueue}), noUsers);
        row("process of another service",
            call(stateHandler, stateHandler, QStringLiteral("process"), {QVariantMap()}),
            stateHandlerCallers);
        row("Introspect of another service", call(stateHandler, introspectable, introspect),
            stateHandlerCallers);
    }
}

void BusAccessTest::everythingElse()
{
    QFETCH(QString, state);
    QFETCH(QDBusMessage, message);
    QFETCH(QStringList, allowed);
    enter(state);
    for (const QString& user : users) {
        const QDBusMessage reply = outcome(user, message);
        QVERIFY2(reply.errorName() == (allowed.contains(user) ? QString() : accessDenied),
                 qPrintable(user + QStringLiteral(": ") + reply.errorName()));
        if (allowed.contains(user) && message.member() == QLatin1String("RequestName")) {
            QCOMPARE(reply.arguments().value(0).toUInt(), nameExists);
        }
    }
}

void BusAccessTest::theSignal_data()
{
    QTest::addColumn<QStringList>("announced");
    const QString startup = QStringLiteral("announce Startup WwwApi ServiceTool Help Ok");
    QTest::newRow("Startup") << QStringList{startup};
    const QVector<QPair<const char*, const char*>> receivers{{"Idle", "UserMenu"},
                                                             {"Print", "PrintManager"},
                                                             {"PrintOff", "PrintManager"},
                                                             {"Update", "UpdateManager"},
                                                             {"Error", "ErrorHandler"}};
    for (const auto& [state, receiver] : receivers) {
        QTest::newRow(state) << QStringList{
            QStringLiteral("announce SingleKey %1 ServiceTool Menu").arg(QLatin1String(receiver)),
            QStringLiteral("announce %1 WwwApi ServiceTool Help Ok").arg(QLatin1String(state))};
    }
}

void BusAccessTest::theSignal()
{
    QFETCH(QStringList, announced);
    reset(QLatin1String(QTest::currentDataTag()));
    std::map<QString, QStringList> heard;
    std::vector<std::unique_ptr<KeyboardClient>> clients;
    for (const QString& user : users) {
        clients.push_back(std::make_unique<KeyboardClient>(m_connections[user]->get()));
        QVERIFY(clients.back()->listen());
        connect(clients.back().get(), &KeyboardClient::announced, this,
                [&heard, user](const auto& map) { heard[user] << ObservationText::announcement(map); });
    }
    release(KeyId::Menu);
    command(KeyboardHandlerCmdId::SimulateModifier, {{keysListKey, QStringList{KeyId::Help, KeyId::Ok}}});
    for (const QString& user : users) {
        // The bus's answer arrives after all messages that the bus has forwarded before.
        outcome(user, call(driver, driver, QStringLiteral("GetId")));
        QCOMPARE(heard[user], announced);
    }
}

void BusAccessTest::theControlProgram_data()
{
    QTest::addColumn<QString>("user");
    for (const QString& user : users) {
        QTest::newRow(qPrintable(user)) << user;
    }
}

void BusAccessTest::theControlProgram()
{
    QFETCH(QString, user);
    ChildProcess program;
    program.start(QStringLiteral("setpriv"),
                  {QStringLiteral("--reuid"), user, QStringLiteral("--init-groups"), m_controlPath,
                   QStringLiteral("test"), QStringLiteral("result")});
    WAIT_FOR_EQUAL(program.state(), QProcess::NotRunning);
    const QString error = QString::fromUtf8(program.readAllStandardError());
    if (callers.contains(user)) {
        QCOMPARE(error, QString());
        QCOMPARE(program.exitCode(), 0);
    } else {
        QCOMPARE(error,
                 QStringLiteral("The bus does not let you send commands. Run this as root, or become a "
                                "member of the group embosser-services (sudo adduser \"$USER\" "
                                "embosser-services) and log in again.\n"));
        QCOMPARE(program.exitCode(), 4);
    }
}

void BusAccessTest::cleanupTestCase()
{
    if (QTest::currentTestFailed()) {
        qInfo().noquote() << m_daemon.readAll();
    }
    m_daemon.end();
}

QDBusMessage BusAccessTest::outcome(const QString& user, const QDBusMessage& message)
{
    // Not QDBus::BlockWithGui, which sometimes misses the answer.
    const QDBusPendingCallWatcher watcher(m_connections[user]->get().asyncCall(message, noTimeout));
    QEventLoop loop;
    connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return watcher.reply();
}

void BusAccessTest::reset(const QString& state)
{
    enter(StateId::Print);
    command(KeyboardHandlerCmdId::StartTestMode);
    release(KeyId::Ten); // ends the test
    command(KeyboardHandlerCmdId::GetTestResult);
    enter(state);
}

void BusAccessTest::enter(const QString& state)
{
    m_stateHandler.changeState(state);
    // The state handler's answer arrives on the same connection, after the announcement.
    const QDBusMessage request = call(stateHandler, stateHandler, QStringLiteral("process"), {QVariantMap()});
    QCOMPARE(outcome(stateHandlerUser, request).type(), QDBusMessage::ReplyMessage);
}

void BusAccessTest::command(const QString& name, const QVariantMap& parameters)
{
    QCOMPARE(outcome(users.first(), commandCall(name, parameters)).type(), QDBusMessage::ReplyMessage);
}

void BusAccessTest::release(const QString& key)
{
    command(KeyboardHandlerCmdId::SimulateKey, {{actionIdKey, KeyActionId::Released}, {keyKey, key}});
}

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    BusAccessTest test(arguments.value(1), arguments.value(2));
    return QTest::qExec(&test, argc - 2, argv + 2);
}
#include "BusAccessTest.moc"

// SPDX-License-Identifier: MIT
#include "tests/whole/system/BusClient.h"
#include "tests/whole/system/RawBusClient.h"
#include "tests/whole/system/SystemAbuseTest.h"

#include <ls/BusNames.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>

#include <array>
#include <memory>

#include <unistd.h>

namespace {

const QString ok = QStringLiteral("OK");
const QString unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");
const QString unknownObject = QStringLiteral("org.freedesktop.DBus.Error.UnknownObject");

/// For messages of some megabytes, which two threads copy; leaks of four attacks would be at least 16 MiB.
constexpr qint64 largeSlackKiB = 8 * 1024;

QString serviceName()
{
    return ls::busName(ls::ServiceId::KeyboardHandler);
}

QVariantMap by(const QString& name, const QVariantMap& arguments = {})
{
    QVariantMap map = arguments;
    map.insert(ls::commandIdKey, name);
    map.insert(ls::senderIdKey, ls::ServiceId::WwwApi);
    return map;
}

QVariantMap printing()
{
    return {{ls::notificationIdKey, ls::StateHandlerNotifId::StateChange},
            {ls::actionIdKey, ls::StateHandlerNotifId::StateChange},
            {ls::senderIdKey, ls::ServiceId::StateHandler},
            {ls::stateIdKey, ls::StateId::Print}};
}

QVariant boxed(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

QVariant structure(const QVariantList& fields)
{
    QDBusArgument argument;
    argument.beginStructure();
    for (const QVariant& field : fields) {
        argument.appendVariant(field);
    }
    argument.endStructure();
    return QVariant::fromValue(argument);
}

/// A value of each basic type and of each container of the bus.
QVariantList allTypes()
{
    const QVariantList basic{true,
                             QVariant::fromValue(uchar(255)),
                             QVariant::fromValue(short(-32768)),
                             QVariant::fromValue(ushort(65535)),
                             -2147483647 - 1,
                             4294967295U,
                             -9223372036854775807LL - 1,
                             18446744073709551615ULL,
                             qInf(),
                             QString("\u00e9\U0001f600"),
                             QVariant::fromValue(QDBusObjectPath("/a/b")),
                             QVariant::fromValue(QDBusSignature("a{s(iav)}"))};
    return basic +
           QVariantList{QByteArray("\0\xff", 2), QStringList{"a", ""},
                        QVariantList(basic),     QVariantMap{{"a", 1}, {"", QVariantMap()}},
                        structure(basic),        boxed(boxed(structure({1, boxed(QVariantList(basic))})))};
}

QVariant wrapped(const QString& container, const QVariant& value)
{
    if (container == "a map") {
        return QVariantMap{{"a", value}};
    }
    if (container == "a list") {
        return QVariantList{value};
    }
    return container == "a variant" ? boxed(value) : structure({boxed(value)});
}

QVariant nested(const QString& container, int depth)
{
    QVariant value = 1;
    for (int i = 0; i < depth; ++i) {
        value = wrapped(container, value);
    }
    return value;
}

/// Commands with `value` in each possible place, by their expected outcomes.
QMap<QString, QVariantMap> commandsWith(const QVariant& value)
{
    QVariantMap asCommand = by(ls::KeyboardHandlerCmdId::GetLastKey);
    QVariantMap asSender = asCommand;
    asCommand.insert(ls::commandIdKey, value);
    asSender.insert(ls::senderIdKey, value);
    return {{QStringLiteral("InvalidCmd"), asCommand},
            {QStringLiteral("InvalidSender"), asSender},
            {QStringLiteral("InvalidValue"),
             by("SimulateKey", {{ls::actionIdKey, "Pressed"}, {ls::keyKey, value}})},
            {ok, by("GetLastKey", {{"odd", value}})}};
}

QByteArray nestedObjects(int depth)
{
    return QByteArray("{\"a\":").repeated(depth) + "1" + QByteArray("}").repeated(depth);
}

QDBusMessage signalOf(const QString& interface, const QVariantMap& content, bool targeted)
{
    const QString member = QStringLiteral("notification");
    QDBusMessage message =
        targeted ? QDBusMessage::createTargetedSignal(serviceName(), ls::busPath, interface, member)
                 : QDBusMessage::createSignal(ls::busPath, interface, member);
    message << content;
    return message;
}

} // namespace

class SystemBusAbuseTest : public SystemAbuseTest
{
    Q_OBJECT

private Q_SLOTS:
    void everyTypeIsAcceptedAtEveryDepth_data();
    void everyTypeIsAcceptedAtEveryDepth();
    void descriptorsAreClosed();
    void longStringsAreHandledLikeOthers_data();
    void longStringsAreHandledLikeOthers();
    void longKeyListsAreProcessed_data();
    void longKeyListsAreProcessed();
    void otherSignaturesAreRefused_data();
    void otherSignaturesAreRefused();
    void otherAddressesAreRefused_data();
    void otherAddressesAreRefused();
    void aFloodFromSeveralClientsIsAnswered();
    void vanishedClientsAreForgotten();
    void callsWithoutReplyAreProcessed();
    void aClientThatReadsNoRepliesDoesNotBlockOthers();
    void strangersCannotAnnounceTheState_data();
    void strangersCannotAnnounceTheState();
    void strangersCannotAnnounceAnOwner();
    void ownNotificationsFromOutsideAreIgnored();
    void oddKeyListsAreAnswered_data();
    void oddKeyListsAreAnswered();

private:
    /// Sends each command; returns the outcomes that differ from their keys.
    QStringList unexpected(const QMap<QString, QVariantMap>& commands);
};

QStringList SystemBusAbuseTest::unexpected(const QMap<QString, QVariantMap>& commands)
{
    QStringList others;
    BusClient client(device().bus().address());
    for (auto it = commands.cbegin(); it != commands.cend(); ++it) {
        const QString outcome = client.outcome(it.value());
        if (outcome != it.key()) {
            others << outcome;
        }
    }
    return others;
}

void SystemBusAbuseTest::everyTypeIsAcceptedAtEveryDepth_data()
{
    QTest::addColumn<QString>("container");
    QTest::addColumn<int>(
        "maxDepth"); // messages are limited to 64 containers, including three of the command
    QTest::newRow("maps") << "a map" << 20;
    QTest::newRow("lists") << "a list" << 30;
    QTest::newRow("variants") << "a variant" << 61;
    QTest::newRow("structures") << "a structure" << 30;
}

void SystemBusAbuseTest::everyTypeIsAcceptedAtEveryDepth()
{
    QFETCH(QString, container);
    QFETCH(int, maxDepth);
    QVERIFY(launch());
    const auto attack = [&] {
        for (int depth = 1; depth <= maxDepth; ++depth) {
            QCOMPARE(unexpected(commandsWith(nested(container, depth))), QStringList());
        }
        for (const QVariant& value : allTypes()) {
            QCOMPARE(unexpected(commandsWith(wrapped(container, wrapped(container, value)))), QStringList());
        }
        BusClient tooDeep(device().bus().address());
        QVERIFY(tooDeep.outcome(by("GetLastKey", {{"odd", nested(container, maxDepth + 1)}})) != ok);
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::descriptorsAreClosed()
{
    QVERIFY(launch());
    const QVariant descriptor = QVariant::fromValue(QDBusUnixFileDescriptor(STDERR_FILENO));
    const auto attack = [&] {
        QCOMPARE(unexpected(commandsWith(descriptor)), QStringList());
        QCOMPARE(unexpected(commandsWith(QVariantList{descriptor, boxed(descriptor)})), QStringList());
        QCOMPARE(unexpected(commandsWith(QVariantMap{{"a", QVariantMap{{"b", descriptor}}}})), QStringList());
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::longStringsAreHandledLikeOthers_data()
{
    QTest::addColumn<int>("length");
    QTest::newRow("none") << 0;
    QTest::newRow("64 KiB") << 64 * 1024;
    QTest::newRow("1 MiB") << 1024 * 1024;
}

void SystemBusAbuseTest::longStringsAreHandledLikeOthers()
{
    QFETCH(int, length);
    QVERIFY(launch());
    const auto attack = [&] {
        QCOMPARE(unexpected(commandsWith(QString(length, 'x'))), QStringList());
        QCOMPARE(unexpected(commandsWith(QByteArray(length, '\xff'))), QStringList());
    };
    QCOMPARE(damageOf(attack, largeSlackKiB), QString());
}

void SystemBusAbuseTest::longKeyListsAreProcessed_data()
{
    QTest::addColumn<QString>("last");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("keys only") << "Feed" << ok;
    QTest::newRow("a word at the end") << "Any"
                                       << "InvalidValue";
}

void SystemBusAbuseTest::longKeyListsAreProcessed()
{
    QFETCH(QString, last);
    QFETCH(QString, outcome);
    QStringList keys{last};
    for (int i = 1; i < 100'000; ++i) {
        keys.prepend(i % 2 == 0 ? ls::KeyId::Ten : ls::KeyId::Chs);
    }
    QVERIFY(launch());
    const auto attack = [&] {
        QCOMPARE(unexpected({{outcome, by("SimulateModifier", {{ls::keysListKey, keys}})}}), QStringList());
        QCOMPARE(unexpected({{outcome, by("SimulateShortcut", {{ls::keysListKey, keys}})}}), QStringList());
    };
    QCOMPARE(damageOf(attack, largeSlackKiB), QString());
}

void SystemBusAbuseTest::otherSignaturesAreRefused_data()
{
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<QMap<QString, int>>();
    QTest::addColumn<QVariantList>("arguments");
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("a text") << QVariantList{"GetLastKey"};
    QTest::newRow("two maps") << QVariantList{by("GetLastKey"), by("GetLastKey")};
    QTest::newRow("a map in a variant") << QVariantList{boxed(by("GetLastKey"))};
    QTest::newRow("a map of texts") << QVariantList{
        QVariant::fromValue(QMap<QString, QString>{{ls::commandIdKey, "GetLastKey"}})};
    QTest::newRow("a map of numbers") << QVariantList{QVariant::fromValue(QMap<QString, int>{{"a", 1}})};
    QTest::newRow("every type") << allTypes();
}

void SystemBusAbuseTest::otherSignaturesAreRefused()
{
    QFETCH(QVariantList, arguments);
    QVERIFY(launch());
    const auto attack = [&] {
        BusClient client(device().bus().address());
        QCOMPARE(client.call(BusClient::processCall(arguments)).errorName(), unknownMethod);
    };
    QCOMPARE(damageOf(attack), QString());
    QCOMPARE(completeLog().size(), 1);
}

void SystemBusAbuseTest::otherAddressesAreRefused_data()
{
    const QString denied = QStringLiteral("org.freedesktop.DBus.Error.AccessDenied");
    const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");
    QTest::addColumn<QStringList>("address");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("error");
    const auto refuse = [](const char* name, const QStringList& address, const QVariantList& arguments,
                           const QString& error) { QTest::newRow(name) << address << arguments << error; };
    refuse("another path", {"/keys", serviceName(), "process"}, {QVariantMap()}, unknownObject);
    refuse("another member", {"/", serviceName(), "Process"}, {QVariantMap()}, denied);
    refuse("the signal", {"/", serviceName(), "notification"}, {QVariantMap()}, denied);
    refuse("another interface", {"/", "com.vantre.StateHandler", "process"}, {QVariantMap()}, denied);
    refuse("no interface", {"/", QString(), "deleteLater"}, {}, denied);
    refuse("properties", {"/", properties, "GetAll"}, {serviceName()}, denied);
    refuse("setting a property", {"/", properties, "Set"}, {serviceName(), "objectName", boxed(1)}, denied);
    refuse("another path described", {"/keys", "org.freedesktop.DBus.Introspectable", "Introspect"}, {},
           unknownObject);
    refuse("an odd ping", {"/", "org.freedesktop.DBus.Peer", "Pong"}, {}, unknownMethod);
    refuse("a ping", {"/", "org.freedesktop.DBus.Peer", "Ping"}, {}, QString());
}

void SystemBusAbuseTest::otherAddressesAreRefused()
{
    QFETCH(QStringList, address);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, error);
    QVERIFY(launch());
    QDBusMessage message =
        QDBusMessage::createMethodCall(serviceName(), address.at(0), address.at(1), address.at(2));
    message.setArguments(arguments);
    BusClient client(device().bus().address());
    QCOMPARE(client.call(message).errorName(), error);
    QCOMPARE(faults(), QString());
}

void SystemBusAbuseTest::aFloodFromSeveralClientsIsAnswered()
{
    constexpr int waves = 4;
    constexpr int perWave = 100; // the bus rejects clients with more than 128 pending calls
    QVERIFY(launch());
    std::array<std::unique_ptr<BusClient>, 5> clients;
    for (auto& client : clients) {
        client = std::make_unique<BusClient>(device().bus().address());
    }
    const auto attack = [&] {
        for (int wave = 0; wave < waves; ++wave) {
            QList<QDBusPendingCall> calls;
            for (const auto& client : clients) {
                calls << client->open(by(wave % 2 == 0 ? "GetModifierKeyList" : "Dance"), perWave);
            }
            QCOMPARE(repliesTo(calls), int(clients.size()) * perWave);
        }
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::vanishedClientsAreForgotten()
{
    QVERIFY(launch());
    const auto attack = [&] {
        for (int i = 0; i < 100; ++i) {
            RawBusClient client(device().folder().busSocket());
            QVERIFY(client.enter());
            QVERIFY(client.call({{"commandId", "GetModifierKeyList"}, {"senderId", "UserMenu"}}));
        }
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::callsWithoutReplyAreProcessed()
{
    QVERIFY(launch());
    BusClient client(device().bus().address());
    const auto attack = [&] {
        for (int i = 0; i < 2000; ++i) {
            QVERIFY(client.connection().send(BusClient::processCall({by("GetModifierKeyList")})));
        }
        QCOMPARE(client.outcome(by("GetLastKey")), ok);
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::aClientThatReadsNoRepliesDoesNotBlockOthers()
{
    constexpr int burst = 50;
    QVERIFY(launch());
    const auto attack = [&] {
        RawBusClient deaf(device().folder().busSocket());
        QVERIFY(deaf.enter());
        for (int i = 1; i <= 3000; ++i) {
            QVERIFY(deaf.call({{"commandId", "GetModifierKeyList"}, {"senderId", "UserMenu"}}));
            // In bursts, because the bus rejects clients with more pending calls.
            QVERIFY(i % burst != 0 || !command(ls::KeyboardHandlerCmdId::GetLastKey).isEmpty());
        }
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::strangersCannotAnnounceTheState_data()
{
    QTest::addColumn<bool>("stateHandler");
    QTest::addColumn<bool>("targeted");
    QTest::newRow("broadcast") << true << false;
    QTest::newRow("to the daemon") << true << true;
    QTest::newRow("to the daemon without a state handler") << false << true;
}

void SystemBusAbuseTest::strangersCannotAnnounceTheState()
{
    QFETCH(bool, stateHandler);
    QFETCH(bool, targeted);
    options.stateHandler = stateHandler;
    QVERIFY(launch());
    BusClient stranger(device().bus().address());
    const auto attack = [&] {
        QVERIFY(stranger.connection().send(
            signalOf(ls::busName(ls::ServiceId::StateHandler), printing(), targeted)));
        QCOMPARE(stranger.outcome(by("GetLastKey")), ok);
    };
    QCOMPARE(damageOf(attack), QString());
}

void SystemBusAbuseTest::strangersCannotAnnounceAnOwner()
{
    QVERIFY(launch());
    BusClient stranger(device().bus().address());
    const QString bus = QStringLiteral("org.freedesktop.DBus");
    for (const QString& name : {ls::busName(ls::ServiceId::StateHandler), ls::busName("SpeechDaemon")}) {
        QDBusMessage change = QDBusMessage::createTargetedSignal(serviceName(), "/org/freedesktop/DBus", bus,
                                                                 QStringLiteral("NameOwnerChanged"));
        change << name << ":1.1" << stranger.connection().baseService();
        QVERIFY(stranger.connection().send(change));
    }
    stranger.connection().send(signalOf(ls::busName(ls::ServiceId::StateHandler), printing(), true));
    QCOMPARE(stranger.outcome(by("GetLastKey")), ok);
    QCOMPARE(faults(), QString());
    tap(ls::KeyId::Up);
    QVERIFY(awaitAction(QStringLiteral("speak EmbosserCore 24")));
}

void SystemBusAbuseTest::ownNotificationsFromOutsideAreIgnored()
{
    options.loggingRules = QStringLiteral("Console.debug=true");
    QVERIFY(launch());
    BusClient stranger(device().bus().address());
    const QVariantMap change{{ls::notificationIdKey, ls::KeyboardHandlerNotifId::KeyboardChange},
                             {ls::actionIdKey, "SingleKey"},
                             {ls::senderIdKey, "Stranger"}};
    QVERIFY(stranger.connection().send(signalOf(serviceName(), change, true)));
    QCOMPARE(stranger.outcome(by("GetLastKey")), ok);
    QCOMPARE(faults(), QString());
    QCOMPARE(completeLog().filter(QStringLiteral("SenderId:")), QStringList("Console: SenderId: \"WwwApi\""));
}

void SystemBusAbuseTest::oddKeyListsAreAnswered_data()
{
    QString maps = QStringLiteral("s ");
    for (int i = 0; i < 19; ++i) {
        maps = "{a: " + maps + '}';
    }
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QByteArray>("other");
    QTest::addColumn<QString>("list");
    QTest::newRow("nulls")
        << QByteArray(R"(null, [null, {"a": null}], {"keys": [null, "Up"], "eAction": null})")
        << QByteArray("null")
        << "{%1: [s , [s , {a: s }], {eAction: s , keys: [s , s Up]}], keyTimeouts: i 1500, other: s }";
    QTest::newRow("100 maps") << QByteArray() << nestedObjects(100)
                              << "{%1: [], keyTimeouts: i 1500, other: " + maps + "}";
}

void SystemBusAbuseTest::oddKeyListsAreAnswered()
{
    QFETCH(QByteArray, rows);
    QFETCH(QByteArray, other);
    QFETCH(QString, list);
    const QByteArray content = "{\"%1\": [" + rows + "], \"other\": " + other + '}';
    options.keyLists = {{"modifierKeyList.json", QByteArray(content).replace("%1", "ModifierKeys")},
                        {"shortcutKeyList.json", QByteArray(content).replace("%1", "ShortcutKeys")}};
    QVERIFY(launch());
    BusClient client(device().bus().address());
    QCOMPARE(wireText(client.process(by("GetModifierKeyList")).arguments().value(0)),
             "{errorId: s Undefined, modifierKeyList: " + list.arg("ModifierKeys") +
                 ", resultId: s Success}");
    QCOMPARE(wireText(client.process(by("GetShortcutKeyList")).arguments().value(0)),
             "{errorId: s Undefined, resultId: s Success, shortcutKeyList: " + list.arg("ShortcutKeys") +
                 '}');
    QCOMPARE(faults(), QString());
}

QTEST_GUILESS_MAIN(SystemBusAbuseTest)
#include "SystemBusAbuseTest.moc"

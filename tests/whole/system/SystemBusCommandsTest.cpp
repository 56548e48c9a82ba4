// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"
#include "tests/whole/system/BusClient.h"
#include "tests/whole/system/SystemTest.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace {

const QString succeeded = QStringLiteral("{errorId: s Undefined, resultId: s Success}");

const QByteArray modifierList = R"({"ModifierKeys": [{"keys": ["Help", "Ok"], "eAction": "Both",)"
                                R"( "receiverService": "UserMenu", "validOnState": "Idle"}]})";
const QByteArray shortcutList = R"({"ShortcutKeys": [{"keys": ["Feed", "Up"], "eAction": "Chord",)"
                                R"( "receiverService": "UserMenu", "validOnState": "Idle"}]})";
const QByteArray longList = R"({"LongKeys": [{"keys": ["Help"], "eAction": "Hold", "timeout": 2},)"
                            R"( {"keys": ["Menu"], "eAction": "Hold", "timeout": 3}]})";

QVariantMap from(const QVariant& sender, const QVariant& name, const QVariantMap& arguments = {})
{
    QVariantMap map = arguments;
    map.insert(ls::commandIdKey, name);
    map.insert(ls::senderIdKey, sender);
    return map;
}

QVariantMap by(const QString& name, const QVariantMap& arguments = {})
{
    return from(ls::ServiceId::WwwApi, name, arguments);
}

QVariantMap keys(const QVariant& list)
{
    return {{ls::keysListKey, list}};
}

QVariantMap key(const QVariant& action, const QVariant& name)
{
    return {{ls::actionIdKey, action}, {ls::keyKey, name}};
}

QVariant boxed(const QVariant& value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

QVariant structure(const QStringList& fields)
{
    QDBusArgument argument;
    argument.beginStructure();
    for (const QString& field : fields) {
        argument << field;
    }
    argument.endStructure();
    return QVariant::fromValue(argument);
}

} // namespace

class SystemBusCommandsTest : public SystemTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void responsesHaveTheseValuesAndTypes_data();
    void responsesHaveTheseValuesAndTypes();
    void theLastKeyIsANumber();
    void theTestResultIsANumber();
    void failuresAreNamedAndLogged_data();
    void failuresAreNamedAndLogged();
    void identifiersOfOtherTypesAreRefused_data();
    void identifiersOfOtherTypesAreRefused();
    void identifiersConvertibleToTextAreAccepted_data();
    void identifiersConvertibleToTextAreAccepted();
    void keyListsMayHaveManyTypes_data();
    void keyListsMayHaveManyTypes();
    void otherValuesThanListsSimulateNothing_data();
    void otherValuesThanListsSimulateNothing();
    void listsWithUnknownKeysAreRefused_data();
    void listsWithUnknownKeysAreRefused();
    void aSimulatedShortcutIsAnnounced();
    void onlyTheFirstAnnouncementHasTheSender();
    void aRefusedCommandSetsNoSender();
    void aCallWithoutReplyIsExecuted();
};

void SystemBusCommandsTest::init()
{
    options.keyLists = {{"modifierKeyList.json", modifierList},
                        {"shortcutKeyList.json", shortcutList},
                        {"longKeyList.json", longList}};
    QVERIFY(launch());
}

void SystemBusCommandsTest::responsesHaveTheseValuesAndTypes_data()
{
    QTest::addColumn<QVariantMap>("command");
    QTest::addColumn<QString>("response");
    const QString row = QStringLiteral("[{eAction: s %1, keys: [s %2, s %3], receiverService: s UserMenu, "
                                       "validOnState: s Idle}], keyTimeouts: i 1500}");
    QTest::newRow("the combinations")
        << by("GetModifierKeyList")
        << "{errorId: s Undefined, modifierKeyList: {ModifierKeys: " + row.arg("Both", "Help", "Ok") +
               ", resultId: s Success}";
    QTest::newRow("the shortcuts") << by("GetShortcutKeyList")
                                   << "{errorId: s Undefined, resultId: s Success, shortcutKeyList: "
                                      "{ShortcutKeys: " +
                                          row.arg("Chord", "Feed", "Up") + "}";
    QTest::newRow("the long presses") << by("GetLongKeysTimeout")
                                      << "{errorId: s Undefined, keyTimeouts: {Help: i 6000, Menu: i 3000}, "
                                         "resultId: s Success}";
    QTest::newRow("no last key") << by("GetLastKey")
                                 << "{errorId: s Undefined, key: i 0, resultId: s Success}";
    QTest::newRow("no test result") << by("GetTestResult") << "{errorId: s Undefined, resultId: i 0}";
    QTest::newRow("the keyboard test") << by("StartTestMode") << succeeded;
    QTest::newRow("a key") << by("SimulateKey", key("Pressed", "Up")) << succeeded;
    QTest::newRow("a combination") << by("SimulateModifier", keys(QStringList{"Help", "Ok"})) << succeeded;
    QTest::newRow("a shortcut") << by("SimulateShortcut", keys(QStringList{"Feed", "Up"})) << succeeded;
}

void SystemBusCommandsTest::responsesHaveTheseValuesAndTypes()
{
    QFETCH(QVariantMap, command);
    BusClient client(device().bus().address());
    const QDBusMessage reply = client.process(command);
    QCOMPARE(reply.signature(), QStringLiteral("a{sv}"));
    QTEST(wireText(reply.arguments().first()), "response");
    QVERIFY(nextKeyWorks());
}

void SystemBusCommandsTest::theLastKeyIsANumber()
{
    BusClient client(device().bus().address());
    QCOMPARE(client.outcome(by("SimulateKey", key("Repeated", "Function"))), QStringLiteral("OK"));
    QCOMPARE(wireText(client.process(by("GetLastKey")).arguments().first()),
             QStringLiteral("{errorId: s Undefined, key: i 464, resultId: s Success}"));
}

void SystemBusCommandsTest::theTestResultIsANumber()
{
    BusClient client(device().bus().address());
    device().setState(ls::StateId::Error);
    WAIT_FOR((tap(ls::KeyId::Up),
              actions().contains(QStringLiteral("announce SingleKey ErrorHandler KeyboardHandler Up"))));
    QCOMPARE(client.outcome(by("StartTestMode")), QStringLiteral("OK"));
    for (const char* name : {"Up", "Menu", "Up"}) {
        client.process(by("SimulateKey", key("Released", name)));
    }
    for (const char* count : {"2", "0"}) {
        QCOMPARE(wireText(client.process(by("GetTestResult")).arguments().first()),
                 QStringLiteral("{errorId: s Undefined, resultId: i %1}").arg(count));
    }
}

void SystemBusCommandsTest::failuresAreNamedAndLogged_data()
{
    QTest::addColumn<QVariantMap>("command");
    QTest::addColumn<QString>("error");
    QTest::addColumn<QStringList>("lines");
    const auto fail = [](const char* name, const QVariantMap& command, const char* error,
                         const QStringList& lines) { QTest::newRow(name) << command << error << lines; };
    const QString process = QStringLiteral("KeyboardHandler::process ERROR: ");
    const QString simulate = QStringLiteral("KeyboardHandler::simulate");
    fail("nothing", {}, "InvalidCmd", {process + "Invalid command!"});
    fail("an unknown command", by("Dance"), "InvalidCmd", {process + "Invalid command!"});
    fail("an unknown command of an unknown sender", from("Nobody", "getlastkey"), "InvalidCmd",
         {process + "Invalid command!"});
    fail("no sender", {{ls::commandIdKey, "GetLastKey"}}, "InvalidSender", {process + "Invalid sender!"});
    fail("an unknown sender", from("wwwapi", "GetLastKey"), "InvalidSender", {process + "Invalid sender!"});
    fail("an unserved command", by("GetKeyList"), "CmdNotFound", {process + "\"GetKeyList\" command n/a!"});
    fail("an unserved command of an unknown sender", from("", "GetKeyList"), "InvalidSender",
         {process + "Invalid sender!"});
    fail("no key action", by("SimulateKey", {{ls::keyKey, "Up"}}), "InvalidValue",
         {simulate + "Key ERROR: Invalid key action received!"});
    fail("an unknown key action and an unknown key", by("SimulateKey", key("Touched", "up")), "InvalidValue",
         {simulate + "Key ERROR: Invalid key action received!"});
    fail("no key", by("SimulateKey", {{ls::actionIdKey, "Pressed"}}), "InvalidValue",
         {simulate + "Key ERROR: Invalid key received!"});
    fail("the key action of none", by("SimulateKey", key("None", "Up")), "ServiceError",
         {"Keyboard::simulateKey ERROR: Key value is invalid!", simulate + "Key FAILED!"});
    fail("a combination without keys", by("SimulateModifier"), "InvalidValue",
         {simulate + "Modifier ERROR: Invalid modifier received!"});
    fail("a shortcut without keys", by("SimulateShortcut"), "InvalidValue",
         {simulate + "Shortcut ERROR: Invalid shortcut received!"});
    fail("a combination with a word", by("SimulateModifier", keys(QStringList{"Help", "Any"})),
         "InvalidValue", {simulate + "Modifier ERROR: Invalid key included in the modifier!"});
    fail("a shortcut with a word", by("SimulateShortcut", keys(QStringList{"Any", "Up"})), "InvalidValue",
         {simulate + "Shortcut ERROR: Invalid key included in the shortcut!"});
}

void SystemBusCommandsTest::failuresAreNamedAndLogged()
{
    QFETCH(QVariantMap, command);
    QFETCH(QString, error);
    QFETCH(QStringList, lines);
    BusClient client(device().bus().address());
    const QDBusMessage reply = client.process(command);
    QCOMPARE(wireText(reply.arguments().first()),
             QStringLiteral("{errorId: s %1, resultId: s Failure}").arg(error));
    QVERIFY(awaitLog(lines.last()));
    QCOMPARE(completeLog().mid(1), lines);
    QVERIFY(nextKeyWorks());
}

void SystemBusCommandsTest::identifiersOfOtherTypesAreRefused_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("a number") << QVariant(4);
    QTest::newRow("a negative number") << QVariant(-2147483647 - 1);
    QTest::newRow("a fraction") << QVariant(0.5);
    QTest::newRow("a truth value") << QVariant(true);
    QTest::newRow("an empty text") << QVariant(QString());
    QTest::newRow("an empty list") << QVariant(QStringList());
    QTest::newRow("a list of two") << QVariant(QStringList{"GetLastKey", "UserMenu"});
    QTest::newRow("a list of variants") << QVariant(QVariantList{"GetLastKey"});
    QTest::newRow("a map") << QVariant(QVariantMap{{"GetLastKey", "GetLastKey"}});
    QTest::newRow("a structure") << structure({"GetLastKey", "UserMenu"});
    QTest::newRow("a path") << QVariant::fromValue(QDBusObjectPath("/GetLastKey"));
    QTest::newRow("a number in a variant") << boxed(4);
    QTest::newRow("a map in two variants") << boxed(boxed(QVariantMap{{"a", 1}}));
}

void SystemBusCommandsTest::identifiersOfOtherTypesAreRefused()
{
    QFETCH(QVariant, value);
    BusClient client(device().bus().address());
    QCOMPARE(client.outcome(from("UserMenu", value)), QStringLiteral("InvalidCmd"));
    QCOMPARE(client.outcome(from(value, "GetLastKey")), QStringLiteral("InvalidSender"));
    QCOMPARE(client.outcome(by("SimulateKey", key(value, "Up"))), QStringLiteral("InvalidValue"));
    QCOMPARE(client.outcome(by("SimulateKey", key("Pressed", value))), QStringLiteral("InvalidValue"));
    QVERIFY(awaitLog(QStringLiteral("KeyboardHandler::simulateKey ERROR: Invalid key received!")));
    QCOMPARE(completeLog().filter(QStringLiteral("ERROR")).size(), 4);
    QVERIFY(nextKeyWorks());
}

void SystemBusCommandsTest::identifiersConvertibleToTextAreAccepted_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("a text in a variant") << boxed("GetLastKey");
    QTest::newRow("a text in three variants") << boxed(boxed(boxed("GetLastKey")));
    QTest::newRow("a list of one") << QVariant(QStringList{"GetLastKey"});
    QTest::newRow("bytes") << QVariant(QByteArray("GetLastKey"));
}

void SystemBusCommandsTest::identifiersConvertibleToTextAreAccepted()
{
    QFETCH(QVariant, value);
    BusClient client(device().bus().address());
    QCOMPARE(client.outcome(from("UserMenu", value)), QStringLiteral("OK"));
    QVERIFY(nextKeyWorks());
}

void SystemBusCommandsTest::keyListsMayHaveManyTypes_data()
{
    qDBusRegisterMetaType<QList<QStringList>>();
    QTest::addColumn<QVariant>("list");
    QTest::newRow("texts") << QVariant(QStringList{"Help", "Ok"});
    QTest::newRow("variants") << QVariant(QVariantList{"Help", "Ok"});
    QTest::newRow("variants in variants") << QVariant(QVariantList{boxed("Help"), boxed(boxed("Ok"))});
    QTest::newRow("a list in variants") << boxed(boxed(QStringList{"Help", "Ok"}));
    QTest::newRow("a structure") << structure({"Help", "Ok"});
    QTest::newRow("lists of one") << QVariant::fromValue(QList<QStringList>{{"Help"}, {"Ok"}});
}

void SystemBusCommandsTest::keyListsMayHaveManyTypes()
{
    QFETCH(QVariant, list);
    BusClient client(device().bus().address());
    QCOMPARE(client.outcome(by("SimulateModifier", keys(list))), QStringLiteral("OK"));
    QVERIFY(awaitAction(QStringLiteral("announce Both UserMenu WwwApi Help Ok")));
    QVERIFY(nextKeyWorks());
}

void SystemBusCommandsTest::otherValuesThanListsSimulateNothing_data()
{
    QTest::addColumn<QVariant>("list");
    QTest::newRow("a number") << QVariant(1);
    QTest::newRow("a fraction") << QVariant(1e300);
    QTest::newRow("a truth value") << QVariant(false);
    QTest::newRow("a map") << QVariant(QVariantMap{{"Help", "Ok"}});
    QTest::newRow("bytes") << QVariant(QByteArray("Help"));
    QTest::newRow("no texts") << QVariant(QStringList());
    QTest::newRow("no variants") << QVariant(QVariantList());
    QTest::newRow("a number in a variant") << boxed(1);
}

void SystemBusCommandsTest::otherValuesThanListsSimulateNothing()
{
    QFETCH(QVariant, list);
    BusClient client(device().bus().address());
    for (const char* gesture : {"SimulateModifier", "SimulateShortcut"}) {
        QCOMPARE(client.outcome(by(gesture, keys(list))), QStringLiteral("OK"));
    }
    // A single string is a list of one. If an earlier row had simulated keys, this would not be the
    // combination.
    QCOMPARE(client.outcome(by("SimulateModifier", keys("Help"))), QStringLiteral("OK"));
    QCOMPARE(client.outcome(by("SimulateModifier", keys("Ok"))), QStringLiteral("OK"));
    QVERIFY(awaitAction(QStringLiteral("announce Both UserMenu WwwApi Help Ok")));
    QVERIFY(nextKeyWorks());
    QCOMPARE(actions().filter(QStringLiteral("announce")).size(), 2);
}

void SystemBusCommandsTest::listsWithUnknownKeysAreRefused_data()
{
    qDBusRegisterMetaType<QList<QStringList>>();
    QTest::addColumn<QVariant>("list");
    QTest::newRow("a number at the end") << QVariant(QVariantList{"Help", "Ok", 5});
    QTest::newRow("a map at the end") << QVariant(QVariantList{"Help", "Ok", QVariantMap()});
    QTest::newRow("a list of two at the end")
        << QVariant::fromValue(QList<QStringList>{{"Help"}, {"Ok"}, {"Up", "Down"}});
    QTest::newRow("an empty text") << QVariant(QStringList{"Help", "Ok", ""});
    QTest::newRow("a path") << QVariant::fromValue(QDBusObjectPath("/Help"));
    QTest::newRow("a word") << QVariant("help");
}

void SystemBusCommandsTest::listsWithUnknownKeysAreRefused()
{
    QFETCH(QVariant, list);
    BusClient client(device().bus().address());
    for (const char* gesture : {"SimulateModifier", "SimulateShortcut"}) {
        QCOMPARE(client.outcome(by(gesture, keys(list))), QStringLiteral("InvalidValue"));
    }
    QVERIFY(nextKeyWorks());
    QCOMPARE(actions().filter(QStringLiteral("announce")).size(), 1);
}

void SystemBusCommandsTest::aSimulatedShortcutIsAnnounced()
{
    BusClient client(device().bus().address());
    QCOMPARE(client.outcome(by("SimulateShortcut", keys(QVariantList{"Feed", "Up"}))), QStringLiteral("OK"));
    QVERIFY(awaitAction(QStringLiteral("announce Chord UserMenu WwwApi Feed Up")));
    QVERIFY(nextKeyWorks());
}

void SystemBusCommandsTest::onlyTheFirstAnnouncementHasTheSender()
{
    BusClient client(device().bus().address());
    QCOMPARE(client.outcome(by("SimulateKey", key("Released", "Feed"))), QStringLiteral("OK"));
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu KeyboardHandler Feed")));
    QCOMPARE(actions().filter(QStringLiteral("announce")).first(),
             QStringLiteral("announce SingleKey PrintManager WwwApi Feed"));
}

void SystemBusCommandsTest::aRefusedCommandSetsNoSender()
{
    BusClient client(device().bus().address());
    client.process(by("Dance"));
    client.process(by("GetKeyList"));
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu - Menu")));
    client.process(by("SimulateKey", key("Touched", "Up")));
    tap(ls::KeyId::Menu);
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu WwwApi Menu")));
}

void SystemBusCommandsTest::aCallWithoutReplyIsExecuted()
{
    BusClient client(device().bus().address());
    QVERIFY(client.connection().send(BusClient::processCall({by("SimulateKey", key("Released", "Menu"))})));
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu WwwApi Menu")));
    QVERIFY(nextKeyWorks());
}

QTEST_GUILESS_MAIN(SystemBusCommandsTest)
#include "SystemBusCommandsTest.moc"

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
    QTest::newRow("a failure") << by("Dance") << "{errorId: s InvalidCmd, resultId: s Failure}";
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

void SystemBusCommandsTest::aCallWithoutReplyIsExecuted()
{
    BusClient client(device().bus().address());
    QVERIFY(client.connection().send(BusClient::processCall({by("SimulateKey", key("Released", "Menu"))})));
    QVERIFY(awaitAction(QStringLiteral("announce SingleKey UserMenu WwwApi Menu")));
    QVERIFY(nextKeyWorks());
}

QTEST_GUILESS_MAIN(SystemBusCommandsTest)
#include "SystemBusCommandsTest.moc"

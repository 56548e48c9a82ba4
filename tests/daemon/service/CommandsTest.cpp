// SPDX-License-Identifier: MIT
#include "service/KeyboardHandler.h"
#include "tests/virtual/DeviceTest.h"

class CommandsTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void lastKeyIsANumberOfEitherDevice();
    void lastKeyBeforeAnyKeyIsZero();
    void lastKeyCountsEveryKeyRecord_data();
    void lastKeyCountsEveryKeyRecord();
    void lastKeyIsUnsigned();
    void startOfATestKeepsEarlierResults();
    void startOfATestLeavesAnOpenCombination();
    void simulatedShortcutUsesTheHeldKey();
    void combiningTimeReplacesAFieldOfTheFile();
    void longKeysTimeoutTriplesHelp();
    void listsCarryTheCombiningTime();
    void simulatedKeyTravelsLikeARealOne();
    void simulateKeyRefusesBadValues_data();
    void simulateKeyRefusesBadValues();
    void simulateKeyWithTheActionNoneFails();
    void simulateKeyWithAGestureActionIsNotCategorized();
    void simulatedListsTakeWhatAQStringListCanBeMadeOf_data();
    void simulatedListsTakeWhatAQStringListCanBeMadeOf();
    void singleTextIsAListOfOne();
    void missingListIsRefused_data();
    void missingListIsRefused();
    void nonKeyInAListSimulatesNothing_data();
    void nonKeyInAListSimulatesNothing();
    void simulatedModifierLeavesTheCombinationOpen();
    void simulatedShortcutLeavesTheKeyHeld();
    void testResultReplacesTheResult();
    void testResultIsTakenOnlyOnce();

private:
    QVariantMap send(const QString& command, QVariantMap parameters = {});
    const QVariantMap success{{"resultId", "Success"}, {"errorId", "Undefined"}};
};

void CommandsTest::init()
{
    start(StateId::Idle,
          {modifierRow({"Chs", "Up"}, "Idle", "NextSet"), shortcutRow({"Function", "Up"}, "Idle", "Louder"),
           longRow("Help", 2, "Idle", "Explain"), longRow("Menu", 2, "Idle", "MainMenu")});
}

QVariantMap CommandsTest::send(const QString& command, QVariantMap parameters)
{
    parameters.insert(commandIdKey, command);
    parameters.insert(senderIdKey, ServiceId::ServiceTool);
    return device->handler().process(parameters);
}

void CommandsTest::lastKeyIsANumberOfEitherDevice()
{
    QVariantMap expected = success;
    expected.insert("key", 139);
    device->press(1, KeyId::Menu);
    QCOMPARE(send("GetLastKey"), expected);
    QCOMPARE(send("GetLastKey").value("key").type(), QVariant::Int);
    device->press(0, KeyId::Ok);
    QCOMPARE(send("GetLastKey").value("key"), QVariant(352));
}

void CommandsTest::lastKeyBeforeAnyKeyIsZero()
{
    QCOMPARE(send("GetLastKey").value("key"), QVariant(0));
}

void CommandsTest::longKeysTimeoutTriplesHelp()
{
    const QVariantMap expected{{"Help", 6000}, {"Menu", 2000}};
    QCOMPARE(send("GetLongKeysTimeout").value("keyTimeouts").toMap(), expected);
}

void CommandsTest::listsCarryTheCombiningTime()
{
    const QVariantMap modifiers = send("GetModifierKeyList").value("modifierKeyList").toMap();
    QCOMPARE(modifiers.value("keyTimeouts"), QVariant(1500));
    QCOMPARE(modifiers.value("ModifierKeys").toList().size(), 1);
    const QVariantMap shortcuts = send("GetShortcutKeyList").value("shortcutKeyList").toMap();
    QCOMPARE(shortcuts.value("keyTimeouts"), QVariant(1500));
    QCOMPARE(shortcuts.value("ShortcutKeys").toList().size(), 1);
}

void CommandsTest::simulatedKeyTravelsLikeARealOne()
{
    QCOMPARE(send("SimulateKey", {{"actionId", "Pressed"}, {"key", "Menu"}}), success);
    QCOMPARE(send("SimulateKey", {{"actionId", "Released"}, {"key", "Menu"}}), success);
    QCOMPARE(device->take(), QStringList{"announce SingleKey UserMenu ServiceTool Menu"});
    QCOMPARE(send("GetLastKey").value("key"), QVariant(139));
}

void CommandsTest::simulateKeyRefusesBadValues_data()
{
    QTest::addColumn<QVariantMap>("parameters");
    QTest::addColumn<QString>("text");
    QTest::newRow("no action") << QVariantMap{{"key", "Menu"}} << "Invalid key action received!";
    QTest::newRow("unknown action") << QVariantMap{{"actionId", "pressed"}, {"key", "Menu"}}
                                    << "Invalid key action received!";
    QTest::newRow("both bad") << QVariantMap{{"actionId", ""}, {"key", ""}} << "Invalid key action received!";
    QTest::newRow("no key") << QVariantMap{{"actionId", "Pressed"}} << "Invalid key received!";
    QTest::newRow("unknown key") << QVariantMap{{"actionId", "Pressed"}, {"key", "Undefined"}}
                                 << "Invalid key received!";
}

void CommandsTest::simulateKeyRefusesBadValues()
{
    QFETCH(QVariantMap, parameters);
    QFETCH(QString, text);
    const QVariantMap expected{{"resultId", "Failure"}, {"errorId", "InvalidValue"}};
    QCOMPARE(send("SimulateKey", parameters), expected);
    QCOMPARE(device->take(), QStringList{"log KeyboardHandler::simulateKey ERROR: " + text});
}

void CommandsTest::simulateKeyWithTheActionNoneFails()
{
    const QVariantMap expected{{"resultId", "Failure"}, {"errorId", "ServiceError"}};
    QCOMPARE(send("SimulateKey", {{"actionId", "None"}, {"key", "Menu"}}), expected);
    const QStringList lines{"log Keyboard::simulateKey ERROR: Key value is invalid!",
                            "log KeyboardHandler::simulateKey FAILED!"};
    QCOMPARE(device->take(), lines);
}

void CommandsTest::simulateKeyWithAGestureActionIsNotCategorized()
{
    QCOMPARE(send("SimulateKey", {{"actionId", "LongPress"}, {"key", "Menu"}}), success);
    QCOMPARE(device->take(),
             QStringList{"log KeyboardManager::onKeyEvent ERROR: Action cannot be categorized!"});
}

void CommandsTest::simulatedListsTakeWhatAQStringListCanBeMadeOf_data()
{
    const QStringList completed{"announce NextSet UserMenu ServiceTool Chs Up", "speak EmbosserCore 24"};
    QTest::addColumn<QVariant>("keys");
    QTest::addColumn<QStringList>("observed");
    QTest::newRow("string list") << QVariant(QStringList{"Chs", "Up"}) << completed;
    QTest::newRow("variant list") << QVariant(QVariantList{"Chs", "Up"}) << completed;
    QTest::newRow("single string") << QVariant("Chs") << QStringList{};
    QTest::newRow("empty list") << QVariant(QStringList{}) << QStringList{};
    QTest::newRow("number") << QVariant(7) << QStringList{};
    QTest::newRow("map") << QVariant(QVariantMap{{"Chs", "Up"}}) << QStringList{};
    QTest::newRow("bytes") << QVariant(QByteArray("Chs")) << QStringList{};
    QTest::newRow("invalid") << QVariant() << QStringList{};
}

void CommandsTest::simulatedListsTakeWhatAQStringListCanBeMadeOf()
{
    QFETCH(QVariant, keys);
    QCOMPARE(send("SimulateModifier", {{"keysList", keys}}), success);
    device->wait(0ms);
    QTEST(device->take(), "observed");
}

void CommandsTest::singleTextIsAListOfOne()
{
    send("SimulateModifier", {{"keysList", "Chs"}});
    send("SimulateModifier", {{"keysList", "Up"}});
    QCOMPARE(device->take().first(), QString("announce NextSet UserMenu ServiceTool Chs Up"));
    QCOMPARE(send("SimulateModifier", {{"keysList", "Dance"}}).value("errorId").toString(),
             QString("InvalidValue"));
}

void CommandsTest::missingListIsRefused_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("line");
    QTest::newRow("modifier") << "SimulateModifier"
                              << "log KeyboardHandler::simulateModifier ERROR: Invalid modifier received!";
    QTest::newRow("shortcut") << "SimulateShortcut"
                              << "log KeyboardHandler::simulateShortcut ERROR: Invalid shortcut received!";
}

void CommandsTest::missingListIsRefused()
{
    QFETCH(QString, command);
    QFETCH(QString, line);
    const QVariantMap expected{{"resultId", "Failure"}, {"errorId", "InvalidValue"}};
    QCOMPARE(send(command), expected);
    QCOMPARE(device->take(), QStringList{line});
}

void CommandsTest::nonKeyInAListSimulatesNothing_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QStringList>("keys");
    QTest::addColumn<QString>("line");
    QTest::newRow("modifier")
        << "SimulateModifier" << QStringList{"Chs", "Up", "up"}
        << "log KeyboardHandler::simulateModifier ERROR: Invalid key included in the modifier!";
    QTest::newRow("shortcut")
        << "SimulateShortcut" << QStringList{"Function", "Up", ""}
        << "log KeyboardHandler::simulateShortcut ERROR: Invalid key included in the shortcut!";
}

void CommandsTest::nonKeyInAListSimulatesNothing()
{
    QFETCH(QString, command);
    QFETCH(QStringList, keys);
    QFETCH(QString, line);
    const QVariantMap expected{{"resultId", "Failure"}, {"errorId", "InvalidValue"}};
    QCOMPARE(send(command, {{"keysList", keys}}), expected);
    device->wait(0ms);
    QCOMPARE(device->take(), QStringList{line});
}

void CommandsTest::simulatedModifierLeavesTheCombinationOpen()
{
    send("SimulateModifier", {{"keysList", QStringList{"Chs", "Up"}}});
    device->wait(0ms);
    device->take();
    send("SimulateModifier", {{"keysList", QStringList{"Up"}}});
    QCOMPARE(device->take(), QStringList{"announce NextSet UserMenu ServiceTool Chs Up"});
}

void CommandsTest::simulatedShortcutLeavesTheKeyHeld()
{
    QCOMPARE(send("SimulateShortcut", {{"keysList", QStringList{"Function", "Up"}}}), success);
    QCOMPARE(device->take(), QStringList{"announce Louder UserMenu ServiceTool Function Up"});
    device->press(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce Louder UserMenu KeyboardHandler Function Up"});
}

void CommandsTest::testResultReplacesTheResult()
{
    QCOMPARE(send("StartTestMode"), success);
    const QVariantMap expected{{"resultId", 0}, {"errorId", "Undefined"}};
    QCOMPARE(send("GetTestResult"), expected);
    QCOMPARE(send("GetTestResult").value("resultId").type(), QVariant::Int);
}

void CommandsTest::testResultIsTakenOnlyOnce()
{
    device->setState(StateId::Error);
    send("StartTestMode");
    device->tap(KeyId::Up);
    device->tap(KeyId::Down);
    device->tap(KeyId::Up);
    QCOMPARE(send("GetTestResult").value("resultId"), QVariant(2));
    QCOMPARE(send("GetTestResult").value("resultId"), QVariant(0));
}

void CommandsTest::lastKeyCountsEveryKeyRecord_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<qint32>("value");
    QTest::newRow("press while starting up") << "Startup" << 1;
    QTest::newRow("release while starting up") << "Startup" << 0;
    QTest::newRow("value that is no action") << "Idle" << 3;
}

void CommandsTest::lastKeyCountsEveryKeyRecord()
{
    QFETCH(QString, state);
    QFETCH(qint32, value);
    device->setState(state);
    device->record(0, {EV_KEY, KEY_OK, value});
    QCOMPARE(send("GetLastKey").value("key"), QVariant(352));
}

void CommandsTest::lastKeyIsUnsigned()
{
    device->record(0, {EV_KEY, 0xffff, 1});
    QCOMPARE(send("GetLastKey").value("key"), QVariant(65535));
}

void CommandsTest::startOfATestKeepsEarlierResults()
{
    device->setState(StateId::Error);
    send("StartTestMode");
    device->tap(KeyId::Up);
    device->tap(KeyId::Ten);
    send("StartTestMode");
    QCOMPARE(send("GetTestResult").value("resultId"), QVariant(2));
}

void CommandsTest::startOfATestLeavesAnOpenCombination()
{
    device->tap(KeyId::Chs);
    send("StartTestMode");
    device->take();
    device->tap(KeyId::Up);
    QCOMPARE(device->take(),
             (QStringList{"announce NextSet UserMenu ServiceTool Chs Up", "speak EmbosserCore 24"}));
}

void CommandsTest::simulatedShortcutUsesTheHeldKey()
{
    device->press(KeyId::Function);
    send("SimulateShortcut", {{"keysList", QStringList{"Up"}}});
    QCOMPARE(device->take(), QStringList{"announce Louder UserMenu ServiceTool Function Up"});
}

void CommandsTest::combiningTimeReplacesAFieldOfTheFile()
{
    device = std::make_unique<VirtualDevice>();
    device->setKeyList("modifierKeyList.json", R"({"ModifierKeys": [], "keyTimeouts": 7})");
    device->start(StateId::Idle);
    const QVariantMap list = send("GetModifierKeyList").value("modifierKeyList").toMap();
    QCOMPARE(list.value("keyTimeouts"), QVariant(1500));
    QCOMPARE(list.value("keyTimeouts").type(), QVariant::Int);
}

VIRTUAL_TIME_TEST_MAIN(CommandsTest)
#include "CommandsTest.moc"

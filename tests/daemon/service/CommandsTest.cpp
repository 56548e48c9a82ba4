// SPDX-License-Identifier: MIT
#include "service/KeyboardHandler.h"
#include "tests/virtual/DeviceTest.h"

class CommandsTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void lastKeyIsANumberOfEitherDevice();
    void combiningTimeReplacesAFieldOfTheFile();
    void simulateKeyRefusesInvalidValues_data();
    void simulateKeyRefusesInvalidValues();
    void simulatedListsAcceptValuesConvertibleToAStringList_data();
    void simulatedListsAcceptValuesConvertibleToAStringList();
    void singleStringIsAListOfOne();
    void missingListIsRefused_data();
    void missingListIsRefused();
    void nonKeyInAListSimulatesNothing_data();
    void nonKeyInAListSimulatesNothing();
    void testResultReplacesTheResult();

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

void CommandsTest::simulateKeyRefusesInvalidValues_data()
{
    QTest::addColumn<QVariantMap>("parameters");
    QTest::addColumn<QString>("text");
    QTest::newRow("no action") << QVariantMap{{"key", "Menu"}} << "Invalid key action received!";
    QTest::newRow("unknown action") << QVariantMap{{"actionId", "pressed"}, {"key", "Menu"}}
                                    << "Invalid key action received!";
    QTest::newRow("both unknown") << QVariantMap{{"actionId", ""}, {"key", ""}}
                                  << "Invalid key action received!";
    QTest::newRow("no key") << QVariantMap{{"actionId", "Pressed"}} << "Invalid key received!";
    QTest::newRow("unknown key") << QVariantMap{{"actionId", "Pressed"}, {"key", "Undefined"}}
                                 << "Invalid key received!";
}

void CommandsTest::simulateKeyRefusesInvalidValues()
{
    QFETCH(QVariantMap, parameters);
    QFETCH(QString, text);
    const QVariantMap expected{{"resultId", "Failure"}, {"errorId", "InvalidValue"}};
    QCOMPARE(send("SimulateKey", parameters), expected);
    QCOMPARE(device->take(), QStringList{"log KeyboardHandler::simulateKey ERROR: " + text});
    // A served command sets the sender even if its values are invalid.
    device->tap(KeyId::Menu);
    QCOMPARE(device->take(), QStringList{"announce SingleKey UserMenu ServiceTool Menu"});
}

void CommandsTest::simulatedListsAcceptValuesConvertibleToAStringList_data()
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

void CommandsTest::simulatedListsAcceptValuesConvertibleToAStringList()
{
    QFETCH(QVariant, keys);
    QCOMPARE(send("SimulateModifier", {{"keysList", keys}}), success);
    device->wait(0ms);
    QTEST(device->take(), "observed");
}

void CommandsTest::singleStringIsAListOfOne()
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

void CommandsTest::testResultReplacesTheResult()
{
    QCOMPARE(send("StartTestMode"), success);
    const QVariantMap expected{{"resultId", 0}, {"errorId", "Undefined"}};
    QCOMPARE(send("GetTestResult"), expected);
    QCOMPARE(send("GetTestResult").value("resultId").type(), QVariant::Int);
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

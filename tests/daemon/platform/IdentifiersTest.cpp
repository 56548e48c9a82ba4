// SPDX-License-Identifier: MIT
#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <QtTest>

#include <limits>

using Ordinals = QMap<QString, int>;

class IdentifiersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void familyHasExactlyTheseOrdinals_data();
    void familyHasExactlyTheseOrdinals();
    void noOrdinalMeansNoMember_data() { familyHasExactlyTheseOrdinals_data(); }
    void noOrdinalMeansNoMember();
    void ordinalsAreUnique_data() { familyHasExactlyTheseOrdinals_data(); }
    void ordinalsAreUnique();
    void identifierTextIsItsName_data();
    void identifierTextIsItsName();
    void messageKeyHasItsText_data();
    void messageKeyHasItsText();
    void messageKeysAreUnique();
    void busNameIsPrefixAndService();
};

void IdentifiersTest::familyHasExactlyTheseOrdinals_data()
{
    QTest::addColumn<Ordinals>("meta");
    QTest::addColumn<Ordinals>("expected");

    QTest::newRow("keys") << ls::KeyId::meta
                          << Ordinals{
                                 {"On", 143},   {"Off", 142},      {"Feed", 101},         {"Help", 138},
                                 {"Menu", 139}, {"Back", 158},     {"Right", 106},        {"Up", 103},
                                 {"Down", 108}, {"Ok", 352},       {"Chs", 118},          {"One", 2},
                                 {"Ten", 11},   {"Function", 464}, {"FactoryReset", 408}, {"Unknown", 240}};
    QTest::newRow("key actions") << ls::KeyActionId::meta
                                 << Ordinals{{"None", -1},    {"Released", 0},  {"Pressed", 1},
                                             {"Repeated", 2}, {"LongPress", 3}, {"ModifierCombination", 4},
                                             {"Shortcut", 5}};
    QTest::newRow("commands") << ls::KeyboardHandlerCmdId::meta
                              << Ordinals{{"GetModifierKeyList", 1}, {"GetShortcutKeyList", 2},
                                          {"GetLongKeysTimeout", 3}, {"GetLastKey", 4},
                                          {"StartTestMode", 5},      {"GetTestResult", 6},
                                          {"SimulateKey", 7},        {"SimulateModifier", 8},
                                          {"SimulateShortcut", 9},   {"GetKeyList", 10}};
    QTest::newRow("services") << ls::ServiceId::meta
                              << Ordinals{{"KeyboardHandler", 1}, {"StateHandler", 2},  {"ErrorHandler", 3},
                                          {"PrintManager", 4},    {"UpdateManager", 5}, {"UserMenu", 6},
                                          {"WwwApi", 7},          {"ServiceTool", 8}};
    QTest::newRow("states") << ls::StateId::meta << Ordinals{{"Startup", 1},  {"Idle", 2},   {"Print", 3},
                                                             {"PrintOff", 4}, {"Update", 5}, {"Error", 6}};
}

void IdentifiersTest::familyHasExactlyTheseOrdinals()
{
    QFETCH(Ordinals, meta);

    QTEST(meta, "expected");
}

void IdentifiersTest::noOrdinalMeansNoMember()
{
    QFETCH(Ordinals, meta);

    QVERIFY(!meta.isEmpty());
    QVERIFY(!meta.values().contains(std::numeric_limits<int>::min()));
}

void IdentifiersTest::ordinalsAreUnique()
{
    QFETCH(Ordinals, meta);
    const QList<int> ordinals = meta.values();

    QCOMPARE(QSet<int>(ordinals.begin(), ordinals.end()).size(), meta.size());
}

void IdentifiersTest::identifierTextIsItsName_data()
{
    QTest::addColumn<QString>("identifier");

    QTest::newRow("Menu") << ls::KeyId::Menu;
    QTest::newRow("FactoryReset") << ls::KeyId::FactoryReset;
    QTest::newRow("ModifierCombination") << ls::KeyActionId::ModifierCombination;
    QTest::newRow("SingleKey") << ls::KeyboardActionId::SingleKey;
    QTest::newRow("FactoryReset action") << ls::KeyboardActionId::FactoryReset;
    QTest::newRow("SimulateShortcut") << ls::KeyboardHandlerCmdId::SimulateShortcut;
    QTest::newRow("KeyboardChange") << ls::KeyboardHandlerNotifId::KeyboardChange;
    QTest::newRow("StateHandler") << ls::ServiceId::StateHandler;
    QTest::newRow("Idle") << ls::StateId::Idle;
    QTest::newRow("GetState") << ls::StateHandlerCmdId::GetState;
    QTest::newRow("StateChange") << ls::StateHandlerNotifId::StateChange;
    QTest::newRow("Success") << ls::ResultId::Success;
    QTest::newRow("Failure") << ls::ResultId::Failure;
    QTest::newRow("InvalidCmd") << ls::ErrorId::InvalidCmd;
    QTest::newRow("InvalidSender") << ls::ErrorId::InvalidSender;
    QTest::newRow("CmdNotFound") << ls::ErrorId::CmdNotFound;
    QTest::newRow("InvalidValue") << ls::ErrorId::InvalidValue;
    QTest::newRow("ServiceError") << ls::ErrorId::ServiceError;
}

void IdentifiersTest::identifierTextIsItsName()
{
    QFETCH(QString, identifier);

    QCOMPARE(identifier, QString::fromLatin1(QTest::currentDataTag()).section(' ', 0, 0));
}

void IdentifiersTest::messageKeyHasItsText_data()
{
    QTest::addColumn<QString>("key");

    QTest::newRow("commandId") << ls::commandIdKey;
    QTest::newRow("subCommandId") << ls::subCommandIdKey;
    QTest::newRow("senderId") << ls::senderIdKey;
    QTest::newRow("receiverId") << ls::receiverIdKey;
    QTest::newRow("notificationId") << ls::notificationIdKey;
    QTest::newRow("resultId") << ls::resultIdKey;
    QTest::newRow("errorId") << ls::errorIdKey;
    QTest::newRow("actionId") << ls::actionIdKey;
    QTest::newRow("key") << ls::keyKey;
    QTest::newRow("firstKey") << ls::firstKeyKey;
    QTest::newRow("secondKey") << ls::secondKeyKey;
    QTest::newRow("keysList") << ls::keysListKey;
    QTest::newRow("modifierKeyList") << ls::modifierKeyListKey;
    QTest::newRow("shortcutKeyList") << ls::shortcutKeyListKey;
    QTest::newRow("keyTimeouts") << ls::keyTimeouts;
    QTest::newRow("stateId") << ls::stateIdKey;
}

void IdentifiersTest::messageKeyHasItsText()
{
    QFETCH(QString, key);

    QCOMPARE(key, QString::fromLatin1(QTest::currentDataTag()));
}

void IdentifiersTest::messageKeysAreUnique()
{
    const QStringList keys{ls::commandIdKey,       ls::subCommandIdKey,    ls::senderIdKey,
                           ls::receiverIdKey,      ls::notificationIdKey,  ls::resultIdKey,
                           ls::errorIdKey,         ls::actionIdKey,        ls::keyKey,
                           ls::firstKeyKey,        ls::secondKeyKey,       ls::keysListKey,
                           ls::modifierKeyListKey, ls::shortcutKeyListKey, ls::keyTimeouts,
                           ls::stateIdKey};

    QCOMPARE(QSet<QString>(keys.begin(), keys.end()).size(), 16);
}

void IdentifiersTest::busNameIsPrefixAndService()
{
    QCOMPARE(ls::busName(ls::ServiceId::KeyboardHandler),
             QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".KeyboardHandler"));
    QCOMPARE(ls::busPath, QStringLiteral("/"));
}

QTEST_GUILESS_MAIN(IdentifiersTest)
#include "IdentifiersTest.moc"

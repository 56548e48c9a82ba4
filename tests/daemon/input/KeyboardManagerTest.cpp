// SPDX-License-Identifier: MIT
#include "tests/fakes/FakeStateHandler.h"
#include "tests/support/LogRecorder.h"
#include "tests/virtual/DeviceTest.h"

class KeyboardManagerTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void idleMenuAloneIsSentAtOnce();
    void idleHelpThenMenuWaitsForTheTimer();
    void idleLoneKeyIsSpokenAndSentAfterTheInterval();
    void idleSecondReleaseReplacesThePendingKey();
    void idleReceiversDependOnTheKey_data();
    void idleReceiversDependOnTheKey();
    void idleFunctionKeyIsSilentOnPellitOnly_data();
    void idleFunctionKeyIsSilentOnPellitOnly();
    void idleKeyWithoutNameIsSpokenAsSentence0_data();
    void idleKeyWithoutNameIsSpokenAsSentence0();
    void idleTestModeChangesNothing();
    void busyStatesSendEveryReleaseAtOnce_data();
    void busyStatesSendEveryReleaseAtOnce();
    void undefinedStateSendsToTheMenuAtOnce();
    void startupSpeaksOnPressesOnly();
    void unknownKeyIsRecordedButNotSent();
    void testModeSpeaksAndCountsEachKeyOnce();
    void testModeEndsWithTenWhichIsSentAsOk();
    void combinationSuppressesSpeechAndSingleKey();
    void combinationInABusyStateIsSentAsSingleKeyToo();
    void functionClosesACombinationAsThePlainSentenceOnOrvane();
    void shortcutSuppressesSpeechAndSingleKey();
    void shortcutClosedByMenuStillSendsMenu();
    void releaseOfAnyKeyEndsAShortcut();
    void longPressFiresAgainWhileHeld();
    void longPressIsStoppedByAnotherKey();
    void longPressOfSeveralStatesWarnsOfTheOthers();
    void actionForAnotherStateIsDroppedWithItsReason();
    void droppedActionStillCountsAsGesture();
    void actionForTheUndefinedReceiverIsDropped();
    void undefinedReceiverLeavesTheKeyALoneOne();
    void factoryResetFiresAfterFiveSeconds();
    void factoryResetEndsWithTheRelease();
    void factoryResetHoldIsStartedByAPressOnly();
    void factoryResetTimerOutlivesAReleaseInStartup();
    void stateChangeDecidesOverAPendingKey();
    void stateChangeOpensTheWayOfACombination();
    void keysOfBothDevicesMakeOneGesture();
    void otherRecordsAreIgnored();
    void lineOfEachKeyIsTracedInItsCategory();
    void releaseIsTracedBehindItsGesture();
    void keysAreNotTracedWhileStartingUp();
    void windowIsOpenUntilExactly1500Milliseconds();
    void stateThatComesBackInTimeLeavesThePendingKey();
    void testModeNamesTheFunctionKeyOnEveryModel_data();
    void testModeNamesTheFunctionKeyOnEveryModel();
    void unknownStateSendsMachineKeysToBothReceivers();
    void modelIsAskedOnlyAtTheStart();
    void statesOfARowAreComparedExactly_data();
    void statesOfARowAreComparedExactly();
    void rowWithoutReceiverIsAnnounced();
    void rowOfTheActionSingleKeyIsNoGesture();
    void oddValueWhileStartingUpIsNotLogged();

private:
    QStringList single(const QString& receiver, const QString& key) const
    {
        return {"announce SingleKey " + receiver + " - " + key};
    }
    static QVariantMap startTest() { return {{commandIdKey, "StartTestMode"}, {senderIdKey, "ServiceTool"}}; }
    static QVariantMap testResult()
    {
        return {{commandIdKey, "GetTestResult"}, {senderIdKey, "ServiceTool"}};
    }
};

void KeyboardManagerTest::idleMenuAloneIsSentAtOnce()
{
    start(StateId::Idle);
    device->press(KeyId::Menu);
    QCOMPARE(device->take(), QStringList{});
    device->release(KeyId::Menu);
    QCOMPARE(device->take(), single("UserMenu", "Menu"));
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::idleHelpThenMenuWaitsForTheTimer()
{
    start(StateId::Idle);
    device->tap(KeyId::Help);
    device->wait(1499ms);
    device->tap(KeyId::Menu);
    QCOMPARE(device->take(), (QStringList{"speak EmbosserCore 20", "speak EmbosserCore 21"}));
    device->wait(1499ms);
    QCOMPARE(device->take(), QStringList{});
    device->wait(1ms);
    QCOMPARE(device->take(), single("UserMenu", "Menu"));
}

void KeyboardManagerTest::idleLoneKeyIsSpokenAndSentAfterTheInterval()
{
    start(StateId::Idle);
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 24"});
    device->wait(1499ms);
    QCOMPARE(device->take(), QStringList{});
    device->wait(1ms);
    QCOMPARE(device->take(), single("UserMenu", "Up"));
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::idleSecondReleaseReplacesThePendingKey()
{
    start(StateId::Idle);
    device->tap(KeyId::Up);
    device->wait(1499ms);
    device->tap(KeyId::Down);
    device->take();
    device->wait(1499ms);
    QCOMPARE(device->take(), QStringList{});
    device->wait(1ms);
    QCOMPARE(device->take(), single("UserMenu", "Down"));
}

void KeyboardManagerTest::idleReceiversDependOnTheKey_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QStringList>("receivers");
    for (const char* key : {"Feed", "Function", "On", "Off", "Ten"}) {
        QTest::newRow(key) << key << QStringList{"PrintManager", "UserMenu"};
    }
    for (const char* key :
         {"Help", "Menu", "Back", "Right", "Up", "Down", "Ok", "Chs", "One", "FactoryReset"}) {
        QTest::newRow(key) << key << QStringList{"UserMenu"};
    }
}

void KeyboardManagerTest::idleReceiversDependOnTheKey()
{
    QFETCH(QString, key);
    QFETCH(QStringList, receivers);
    start(StateId::Idle);
    device->tap(key);
    device->wait(1500ms);
    QStringList expected{"announce SingleKey " + receivers.value(0) + " - " + key};
    if (receivers.size() > 1) {
        expected.append("announce SingleKey UserMenu KeyboardHandler " + key);
    }
    QCOMPARE(device->take().filter("announce"), expected);
}

void KeyboardManagerTest::idleFunctionKeyIsSilentOnPellitOnly_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("spoken");
    QTest::newRow("Pellit") << "Pellit" << QStringList{};
    QTest::newRow("Orvane") << "Orvane" << QStringList{"speak EmbosserCore 30"};
}

void KeyboardManagerTest::idleFunctionKeyIsSilentOnPellitOnly()
{
    QFETCH(QString, model);
    start(StateId::Idle, {}, model);
    device->tap(KeyId::Function);
    QTEST(device->take(), "spoken");
    device->wait(1500ms);
    QCOMPARE(device->take().size(), 2);
}

void KeyboardManagerTest::idleKeyWithoutNameIsSpokenAsSentence0_data()
{
    QTest::addColumn<quint16>("code");
    QTest::addColumn<QStringList>("sent");
    QTest::newRow("factory reset") << quint16(KEY_RESTART) << single("UserMenu", "FactoryReset");
    QTest::newRow("key that the panel does not have") << quint16(KEY_A) << single("UserMenu", "Undefined");
    QTest::newRow("the unknown key") << quint16(KEY_UNKNOWN) << QStringList{};
}

void KeyboardManagerTest::idleKeyWithoutNameIsSpokenAsSentence0()
{
    QFETCH(quint16, code);
    start(StateId::Idle);
    device->record(0, {EV_KEY, code, 0});
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 0"});
    device->wait(1500ms);
    QTEST(device->take(), "sent");
}

void KeyboardManagerTest::idleTestModeChangesNothing()
{
    start(StateId::Idle);
    device->process(startTest());
    device->take();
    device->tap(KeyId::Ten);
    device->wait(1500ms);
    QCOMPARE(device->take(),
             (QStringList{"speak EmbosserCore 29", "announce SingleKey PrintManager ServiceTool Ten",
                          "announce SingleKey UserMenu KeyboardHandler Ten"}));
    QCOMPARE(device->process(testResult()).value(resultIdKey), QVariant(0));
}

void KeyboardManagerTest::busyStatesSendEveryReleaseAtOnce_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("receiver");
    QTest::newRow("printing") << "Print"
                              << "PrintManager";
    QTest::newRow("print paused") << "PrintOff"
                                  << "PrintManager";
    QTest::newRow("error") << "Error"
                           << "ErrorHandler";
    QTest::newRow("update") << "Update"
                            << "UpdateManager";
}

void KeyboardManagerTest::busyStatesSendEveryReleaseAtOnce()
{
    QFETCH(QString, state);
    QFETCH(QString, receiver);
    start(state);
    const QString announced = "announce SingleKey " + receiver;
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), QStringList{announced + " - Up"});
    for (const char* key : {"Feed", "Menu", "Ten"}) {
        device->tap(key);
        QCOMPARE(device->take(), QStringList{announced + " KeyboardHandler " + key});
    }
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::undefinedStateSendsToTheMenuAtOnce()
{
    start("NoSuchState");
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), single("UserMenu", "Up"));
}

void KeyboardManagerTest::startupSpeaksOnPressesOnly()
{
    start(StateId::Startup, {shortcutRow({"Menu", "Up"}, "Startup", "X"), longRow("Up", 1, "Startup", "Y")});
    device->press(KeyId::Menu);
    QCOMPARE(device->take(), (QStringList{"cancel", "speak EmbosserError 69"}));
    device->press(KeyId::Up);
    QCOMPARE(device->take(), (QStringList{"cancel", "speak EmbosserError 69"}));
    device->wait(10s);
    device->release(KeyId::Up);
    device->release(KeyId::Menu);
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::unknownKeyIsRecordedButNotSent()
{
    start(StateId::Print);
    device->record(0, {EV_KEY, KEY_UNKNOWN, 0});
    QCOMPARE(device->take(), QStringList{});
    QCOMPARE(device->process(testResult()).value(resultIdKey), QVariant(1));
}

void KeyboardManagerTest::testModeSpeaksAndCountsEachKeyOnce()
{
    start(StateId::Error);
    device->process(startTest());
    device->take();
    device->tap(KeyId::Up);
    device->tap(KeyId::Up);
    device->tap(KeyId::FactoryReset);
    QCOMPARE(device->take(),
             (QStringList{"cancel", "speak EmbosserCore 24", "cancel", "speak EmbosserCore 24"}));
    QCOMPARE(device->process(testResult()).value(resultIdKey), QVariant(2));
}

void KeyboardManagerTest::testModeEndsWithTenWhichIsSentAsOk()
{
    start(StateId::Error);
    device->process(startTest());
    device->take();
    device->tap(KeyId::Down);
    device->tap(KeyId::Ten);
    QCOMPARE(device->take(),
             (QStringList{"cancel", "speak EmbosserCore 25", "announce SingleKey ErrorHandler ServiceTool Ok",
                          "cancel", "speak EmbosserCore 29"}));
    QCOMPARE(device->process(testResult()).value(resultIdKey), QVariant(2));
    QCOMPARE(device->process(testResult()).value(resultIdKey), QVariant(0));
    device->take();
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce SingleKey ErrorHandler ServiceTool Up"});
}

void KeyboardManagerTest::combinationSuppressesSpeechAndSingleKey()
{
    start(StateId::Idle, {modifierRow({"Chs", "Up"}, "Idle", "NextSet")});
    device->tap(KeyId::Chs);
    device->wait(1499ms);
    device->take();
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), (QStringList{"announce NextSet UserMenu - Chs Up", "speak EmbosserCore 24"}));
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::combinationInABusyStateIsSentAsSingleKeyToo()
{
    start(StateId::Idle, {modifierRow({"Chs", "Up"}, "Print", "NextSet")});
    device->tap(KeyId::Chs);
    device->take();
    device->setState(StateId::Print);
    device->tap(KeyId::Up);
    QCOMPARE(device->take(),
             (QStringList{"announce NextSet UserMenu - Chs Up",
                          "announce SingleKey PrintManager KeyboardHandler Up", "speak EmbosserCore 24"}));
}

void KeyboardManagerTest::functionClosesACombinationAsThePlainSentenceOnOrvane()
{
    start(StateId::Idle, {modifierRow({"Chs", "Function"}, "Idle", "Act")}, "Orvane");
    device->tap(KeyId::Chs);
    device->take();
    device->tap(KeyId::Function);
    QCOMPARE(device->take(), (QStringList{"announce Act UserMenu - Chs Function", "speak EmbosserCore 31"}));
}

void KeyboardManagerTest::shortcutSuppressesSpeechAndSingleKey()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Idle", "Louder")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce Louder UserMenu - Function Up"});
    device->release(KeyId::Up);
    device->release(KeyId::Function);
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::shortcutClosedByMenuStillSendsMenu()
{
    start(StateId::Idle, {shortcutRow({"Function", "Menu"}, "Idle", "Act")});
    device->press(KeyId::Function);
    device->press(KeyId::Menu);
    device->take();
    device->release(KeyId::Menu);
    QCOMPARE(device->take(), QStringList{"announce SingleKey UserMenu KeyboardHandler Menu"});
}

void KeyboardManagerTest::releaseOfAnyKeyEndsAShortcut()
{
    start(StateId::Print, {shortcutRow({"Function", "Up"}, "Print", "Louder")});
    device->press(KeyId::Function);
    device->press(KeyId::Ok);
    device->release(KeyId::Ok);
    device->take();
    device->press(KeyId::Up);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::longPressFiresAgainWhileHeld()
{
    start(StateId::Idle, {longRow("Help", 2, "Idle", "Explain")});
    device->press(KeyId::Help);
    device->wait(2249ms);
    QCOMPARE(device->take(), QStringList{});
    device->wait(1ms);
    QCOMPARE(device->take(), QStringList{"announce Explain UserMenu - Help"});
    device->wait(2033ms); // the next repeat, and the time again
    QCOMPARE(device->take(), QStringList{"announce Explain UserMenu KeyboardHandler Help"});
    device->release(KeyId::Help);
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::longPressIsStoppedByAnotherKey()
{
    start(StateId::Idle, {longRow("Help", 2, "Idle", "Explain")});
    device->press(0, KeyId::Help);
    device->wait(2000ms);
    device->press(1, KeyId::Up);
    device->wait(1000ms);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::longPressOfSeveralStatesWarnsOfTheOthers()
{
    start(StateId::Print, {longRow("Back", 1, "Idle | Print", "Cancel", "PrintManager")});
    device->hold(KeyId::Back, 1250ms);
    QCOMPARE(device->take(), (QStringList{"log KeyboardManager::onEvent WARN: Expected state is:  \"Idle\" , "
                                          "but current state is:  \"Print\" !?",
                                          "announce Cancel PrintManager - Back",
                                          "announce SingleKey PrintManager KeyboardHandler Back"}));
}

void KeyboardManagerTest::actionForAnotherStateIsDroppedWithItsReason()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Print", "Louder")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"log KeyboardManager::onEvent WARN: Expected state is:  \"Print\" , "
                                         "but current state is:  \"Idle\" !?"});
}

void KeyboardManagerTest::droppedActionStillCountsAsGesture()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Print", "Louder")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    device->take();
    device->release(KeyId::Up);
    device->release(KeyId::Function);
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::actionForTheUndefinedReceiverIsDropped()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Idle", "Louder", "Undefined")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    QCOMPARE(device->take(),
             QStringList{"log KeyboardManager::onEvent WARN: Invalid event, receiver service is undefined!"});
}

void KeyboardManagerTest::undefinedReceiverLeavesTheKeyALoneOne()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Idle", "Louder", "Undefined")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    device->take();
    device->release(KeyId::Up);
    device->wait(1500ms);
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 24"} + single("UserMenu", "Up"));
}

void KeyboardManagerTest::factoryResetFiresAfterFiveSeconds()
{
    start(StateId::Error);
    device->press(KeyId::FactoryReset);
    device->wait(4999ms);
    QCOMPARE(device->take(), QStringList{});
    device->wait(1ms);
    QCOMPARE(device->take(),
             (QStringList{"announce FactoryReset WwwApi - FactoryReset", "speak EmbosserMenu 487"}));
    device->wait(20s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::factoryResetEndsWithTheRelease()
{
    start(StateId::Print);
    device->hold(KeyId::FactoryReset, 4999ms);
    QCOMPARE(device->take(), single("PrintManager", "FactoryReset"));
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::factoryResetHoldIsStartedByAPressOnly()
{
    start(StateId::Startup);
    device->press(KeyId::FactoryReset);
    device->setState(StateId::Idle);
    device->take();
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::factoryResetTimerOutlivesAReleaseInStartup()
{
    start(StateId::Idle);
    device->press(KeyId::FactoryReset);
    device->setState(StateId::Startup);
    device->release(KeyId::FactoryReset);
    device->wait(5s);
    QCOMPARE(device->take(),
             (QStringList{"announce FactoryReset WwwApi - FactoryReset", "speak EmbosserMenu 487"}));
}

void KeyboardManagerTest::stateChangeDecidesOverAPendingKey()
{
    start(StateId::Idle);
    device->tap(KeyId::Up);
    device->setState(StateId::Print);
    device->take();
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
    device->setState(StateId::Idle);
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
}

void KeyboardManagerTest::stateChangeOpensTheWayOfACombination()
{
    start(StateId::Update, {modifierRow({"Chs", "Up"}, "Idle", "NextSet")});
    device->tap(KeyId::Chs); // sent, and reset, in this state
    device->setState(StateId::Idle);
    device->take();
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 24"});
}

void KeyboardManagerTest::keysOfBothDevicesMakeOneGesture()
{
    start(StateId::Idle,
          {shortcutRow({"Function", "Up"}, "Idle", "Louder"), modifierRow({"Chs", "Ok"}, "Idle", "Set")});
    device->press(0, KeyId::Function);
    device->press(1, KeyId::Up);
    device->release(1, KeyId::Up);
    device->release(0, KeyId::Function);
    device->wait(1500ms);
    device->press(1, KeyId::Chs);
    device->release(1, KeyId::Chs);
    device->tap(KeyId::Ok);
    QCOMPARE(device->take().filter("announce"),
             (QStringList{"announce Louder UserMenu - Function Up",
                          "announce Set UserMenu KeyboardHandler Chs Ok"}));
}

void KeyboardManagerTest::otherRecordsAreIgnored()
{
    start(StateId::Print);
    device->record(0, {EV_MSC, KEY_MENU, 0});
    device->record(0, {EV_SYN, KEY_MENU, 1});
    device->wait(10s);
    QCOMPARE(device->take(), QStringList{});
    device->record(0, {EV_KEY, KEY_MENU, 3});
    QCOMPARE(device->take(),
             QStringList{"log KeyboardManager::onKeyEvent ERROR: Action cannot be categorized!"});
}

void KeyboardManagerTest::lineOfEachKeyIsTracedInItsCategory()
{
    start(StateId::Idle);
    QLoggingCategory::setFilterRules("KeyboardManager.debug=true");
    const LogRecorder log;
    device->hold(KeyId::Up, 250ms);
    QLoggingCategory::setFilterRules({});
    const QVector<LogLine> expected{{QtDebugMsg, "KeyboardManager", "Key \"Up\" pressed."},
                                    {QtDebugMsg, "KeyboardManager", "Key \"Up\" repeatedly pressed."},
                                    {QtDebugMsg, "KeyboardManager", "Key \"Up\" released."}};
    QCOMPARE(log.lines(), expected);
}

void KeyboardManagerTest::releaseIsTracedBehindItsGesture()
{
    start(StateId::Idle, {modifierRow({"Chs", "Ok"}, "Idle", "Set")});
    device->tap(KeyId::Chs);
    device->press(KeyId::Ok);
    device->take();
    QLoggingCategory::setFilterRules("KeyboardManager.debug=true");
    device->release(KeyId::Ok);
    QLoggingCategory::setFilterRules({});
    QCOMPARE(device->take(), (QStringList{"announce Set UserMenu - Chs Ok", "log Key \"Ok\" released.",
                                          "speak EmbosserCore 26"}));
}

void KeyboardManagerTest::keysAreNotTracedWhileStartingUp()
{
    start(StateId::Startup);
    QLoggingCategory::setFilterRules("KeyboardManager.debug=true");
    const LogRecorder log;
    device->hold(KeyId::Up, 250ms);
    QLoggingCategory::setFilterRules({});
    QCOMPARE(log.lines(), {});
}

void KeyboardManagerTest::windowIsOpenUntilExactly1500Milliseconds()
{
    start(StateId::Idle, {modifierRow({"Chs", "Up"}, "Idle", "NextSet")});
    device->tap(KeyId::Chs);
    device->wait(1500ms);
    QCOMPARE(device->take(), (QStringList{"speak EmbosserCore 27", "announce SingleKey UserMenu - Chs"}));
    device->tap(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 24"});
}

void KeyboardManagerTest::stateThatComesBackInTimeLeavesThePendingKey()
{
    start(StateId::Idle);
    device->tap(KeyId::Up);
    device->setState(StateId::Print);
    device->setState(StateId::Idle);
    device->take();
    device->wait(1500ms);
    QCOMPARE(device->take(), single("UserMenu", "Up"));
}

void KeyboardManagerTest::testModeNamesTheFunctionKeyOnEveryModel_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QStringList>("spoken");
    QTest::newRow("Pellit") << "Pellit" << QStringList{"cancel", "speak EmbosserCore 31"};
    QTest::newRow("Orvane") << "Orvane" << QStringList{"cancel", "speak EmbosserCore 30"};
}

void KeyboardManagerTest::testModeNamesTheFunctionKeyOnEveryModel()
{
    QFETCH(QString, model);
    start(StateId::Error, {}, model);
    device->process(startTest());
    device->take();
    device->tap(KeyId::Function);
    QTEST(device->take(), "spoken");
}

void KeyboardManagerTest::unknownStateSendsMachineKeysToBothReceivers()
{
    start("NoSuchState");
    device->tap(KeyId::Feed);
    QCOMPARE(device->take(), (QStringList{"announce SingleKey PrintManager - Feed",
                                          "announce SingleKey UserMenu KeyboardHandler Feed"}));
}

void KeyboardManagerTest::modelIsAskedOnlyAtTheStart()
{
    start(StateId::Idle, {}, "Orvane");
    device->setModel("Pellit");
    device->tap(KeyId::Function);
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 30"});
}

void KeyboardManagerTest::statesOfARowAreComparedExactly_data()
{
    QTest::addColumn<QString>("state");
    QTest::newRow("other case") << "idle";
    QTest::newRow("with a blank") << " Idle";
    QTest::newRow("none") << "";
}

void KeyboardManagerTest::statesOfARowAreComparedExactly()
{
    QFETCH(QString, state);
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, state, "Louder")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"log KeyboardManager::onEvent WARN: Expected state is:  \"" + state +
                                         "\" , but current state is:  \"Idle\" !?"});
}

void KeyboardManagerTest::rowWithoutReceiverIsAnnounced()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Idle", "Louder", "")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"announce Louder - - Function Up"});
}

void KeyboardManagerTest::rowOfTheActionSingleKeyIsNoGesture()
{
    start(StateId::Idle, {shortcutRow({"Function", "Up"}, "Idle", "SingleKey")});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    device->take();
    device->release(KeyId::Up);
    QCOMPARE(device->take(), QStringList{"speak EmbosserCore 24"});
    device->wait(1500ms);
    QCOMPARE(device->take(), QStringList{"announce SingleKey UserMenu KeyboardHandler Up"});
}

void KeyboardManagerTest::oddValueWhileStartingUpIsNotLogged()
{
    start(StateId::Startup);
    device->record(0, {EV_KEY, KEY_MENU, 3});
    QCOMPARE(device->take(), QStringList{});
}

VIRTUAL_TIME_TEST_MAIN(KeyboardManagerTest)
#include "KeyboardManagerTest.moc"

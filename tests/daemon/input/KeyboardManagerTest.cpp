// SPDX-License-Identifier: MIT
#include "tests/support/LogRecorder.h"
#include "tests/virtual/DeviceTest.h"

/// Tests what the key scripts in tests/whole/golden cannot express: states and rows that they do not accept,
/// and traces.
class KeyboardManagerTest : public DeviceTest
{
    Q_OBJECT

private Q_SLOTS:
    void unknownStateSendsAtOnceToTheReceiversOfIdle();
    void keysAreTracedInTheirCategory();
    void releaseIsTracedAfterItsGesture();
    void keysAreNotTracedWhileStartingUp();
    void modelIsReadOnlyAtTheStart();
    void statesOfARowAreComparedExactly_data();
    void statesOfARowAreComparedExactly();
    void rowWithoutReceiverIsAnnounced();

private:
    /// The log, with traces, while Up is held until it repeats.
    QVector<LogLine> traced();
    /// Presses Function and Up with a shortcut row of these keys; returns the observations.
    QStringList pressPair(const KeyRow& row);
};

QVector<LogLine> KeyboardManagerTest::traced()
{
    QLoggingCategory::setFilterRules("KeyboardManager.debug=true");
    const LogRecorder log;
    device->hold(KeyId::Up, 250ms);
    QLoggingCategory::setFilterRules({});
    return log.lines();
}

QStringList KeyboardManagerTest::pressPair(const KeyRow& row)
{
    start(StateId::Idle, {row});
    device->press(KeyId::Function);
    device->press(KeyId::Up);
    return device->take();
}

void KeyboardManagerTest::unknownStateSendsAtOnceToTheReceiversOfIdle()
{
    start("NoSuchState");
    device->tap(KeyId::Up);
    device->tap(KeyId::Feed);
    QCOMPARE(device->take(), (QStringList{"announce SingleKey UserMenu - Up",
                                          "announce SingleKey PrintManager KeyboardHandler Feed",
                                          "announce SingleKey UserMenu KeyboardHandler Feed"}));
}

void KeyboardManagerTest::keysAreTracedInTheirCategory()
{
    start(StateId::Idle);
    const QVector<LogLine> expected{{QtDebugMsg, "KeyboardManager", "Key \"Up\" pressed."},
                                    {QtDebugMsg, "KeyboardManager", "Key \"Up\" repeatedly pressed."},
                                    {QtDebugMsg, "KeyboardManager", "Key \"Up\" released."}};
    QCOMPARE(traced(), expected);
}

void KeyboardManagerTest::releaseIsTracedAfterItsGesture()
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
    QCOMPARE(traced(), {});
}

void KeyboardManagerTest::modelIsReadOnlyAtTheStart()
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
    QCOMPARE(pressPair(shortcutRow({"Function", "Up"}, state, "Louder")),
             QStringList{"log KeyboardManager::onEvent WARN: Expected state is:  \"" + state +
                         "\" , but current state is:  \"Idle\" !?"});
}

void KeyboardManagerTest::rowWithoutReceiverIsAnnounced()
{
    QCOMPARE(pressPair(shortcutRow({"Function", "Up"}, "Idle", "Louder", "")),
             QStringList{"announce Louder - - Function Up"});
}

VIRTUAL_TIME_TEST_MAIN(KeyboardManagerTest)
#include "KeyboardManagerTest.moc"

// SPDX-License-Identifier: MIT
#include "keys/ShortcutKey.h"
#include "tests/virtual/MapReader.h"

#include <QtTest>

class ShortcutKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pressedSequencesFire_data();
    void pressedSequencesFire();
    void resetForgetsTheHeldKey();
    void beforeTheFirstResetNoKeyOpensARow();
    void signalCarriesTheWholeRow();
    void keyListIsTheWholeFile();
    void missingFileHasAnEmptyList();

private:
    void make(MapReader reader);
    QStringList press(const QStringList& keys);

    std::unique_ptr<ShortcutKey> shortcuts;
    QStringList fired;
};

void ShortcutKeyTest::make(MapReader reader)
{
    shortcuts = std::make_unique<ShortcutKey>(reader, nullptr);
    shortcuts->reset();
    connect(shortcuts.get(), &ShortcutKey::doubleShortcut, this,
            [this](const QString& action) { fired.append(action); });
}

QStringList ShortcutKeyTest::press(const QStringList& keys)
{
    fired.clear();
    for (const QString& key : keys) {
        shortcuts->process(key);
    }
    return fired;
}

void ShortcutKeyTest::pressedSequencesFire_data()
{
    using Rows = QList<QStringList>;
    QTest::addColumn<Rows>("rows");
    QTest::addColumn<QStringList>("pressed");
    QTest::addColumn<QStringList>("actions");
    const Rows one{{"Function", "Up"}};
    QTest::newRow("closing key while the opening key is held")
        << one << QStringList{"Function", "Up"} << QStringList{"A0"};
    QTest::newRow("closing key again")
        << one << QStringList{"Function", "Up", "Up"} << QStringList{"A0", "A0"};
    QTest::newRow("in the wrong order") << one << QStringList{"Up", "Function"} << QStringList{};
    QTest::newRow("wrong order is right for another row")
        << Rows{{"Function", "Up"}, {"Up", "Function"}} << QStringList{"Up", "Function"} << QStringList{"A1"};
    QTest::newRow("another key between") << one << QStringList{"Function", "Ok", "Up"} << QStringList{"A0"};
    QTest::newRow("first of two equal rows")
        << Rows{{"Function", "Up"}, {"Function", "Up"}} << QStringList{"Function", "Up"} << QStringList{"A0"};
    QTest::newRow("second row of the same opening key")
        << Rows{{"Function", "Up"}, {"Function", "Down"}} << QStringList{"Function", "Down"}
        << QStringList{"A1"};
    QTest::newRow("keys in the middle do not count")
        << Rows{{"Function", "Ok", "Up"}} << QStringList{"Function", "Up"} << QStringList{"A0"};
    QTest::newRow("single key pressed twice")
        << Rows{{"Help"}} << QStringList{"Help", "Help"} << QStringList{"A0"};
    QTest::newRow("row without keys") << Rows{{}} << QStringList{"", ""} << QStringList{};
    QTest::newRow("row without keys is passed over")
        << Rows{{}, {"Function", "Up"}} << QStringList{"Function", "Up"} << QStringList{"A1"};
}

void ShortcutKeyTest::pressedSequencesFire()
{
    QFETCH(QList<QStringList>, rows);
    QFETCH(QStringList, pressed);
    make(MapReader::ofKeys("ShortcutKeys", rows));
    QTEST(press(pressed), "actions");
}

void ShortcutKeyTest::resetForgetsTheHeldKey()
{
    make(MapReader::ofKeys("ShortcutKeys", {{"Function", "Up"}}));
    press({"Function"});
    shortcuts->reset();
    QCOMPARE(press({"Up"}), QStringList{});
}

void ShortcutKeyTest::signalCarriesTheWholeRow()
{
    make(MapReader({{"ShortcutKeys", QVariantList{QVariantMap{{"keys", QStringList{"Function", "Ok", "Up"}},
                                                              {"eAction", "Act"},
                                                              {"receiverService", "WwwApi"},
                                                              {"validOnState", "Idle|Print"},
                                                              {"timeout", 3}}}}}));
    QVariantList carried;
    connect(shortcuts.get(), &ShortcutKey::doubleShortcut, this,
            [&carried](const QString& action, const QString& receiver, const QString& states,
                       const QVariantMap& parameters) {
                carried = QVariantList{action, receiver, states, parameters};
            });
    press({"Function", "Up"});
    const QVariantMap parameters{{"firstKey", "Function"}, {"secondKey", "Up"}};
    QCOMPARE(carried, (QVariantList{"Act", "WwwApi", "Idle|Print", parameters}));
}

void ShortcutKeyTest::keyListIsTheWholeFile()
{
    const QVariantMap content{{"ShortcutKeys", QVariantList{}}, {"extra", 1}};
    make(MapReader(content));
    QCOMPARE(shortcuts->keyList(), content);
}

void ShortcutKeyTest::missingFileHasAnEmptyList()
{
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^ShortcutKey::load ERROR: reading"));
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^ShortcutKey::load ERROR: value list"));
    make(MapReader());
    QCOMPARE(shortcuts->keyList(), QVariantMap{});
    QCOMPARE(press({"Function", "Up"}), QStringList{});
}

void ShortcutKeyTest::beforeTheFirstResetNoKeyOpensARow()
{
    MapReader reader = MapReader::ofKeys("ShortcutKeys", {{"Function", "Up"}});
    ShortcutKey untouched(reader, nullptr);
    QSignalSpy spy(&untouched, &ShortcutKey::doubleShortcut);
    untouched.process("Function");
    untouched.process("Up");
    QCOMPARE(spy.size(), 0);
}

QTEST_GUILESS_MAIN(ShortcutKeyTest)
#include "ShortcutKeyTest.moc"

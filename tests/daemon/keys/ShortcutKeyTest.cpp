// SPDX-License-Identifier: MIT
#include "keys/ShortcutKey.h"
#include "tests/virtual/MapReader.h"

#include <QtTest>

/// Tests what key scripts cannot express.
class ShortcutKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowWithoutKeysIsSkipped();
    void keysOpenNoRowBeforeTheFirstReset();
    void signalHasTheWholeRow();
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

void ShortcutKeyTest::rowWithoutKeysIsSkipped()
{
    make(MapReader::ofKeys("ShortcutKeys", {{}, {"Function", "Up"}}));
    QCOMPARE(press({"", ""}), QStringList{});
    QCOMPARE(press({"Function", "Up"}), QStringList{"A1"});
}

void ShortcutKeyTest::signalHasTheWholeRow()
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

void ShortcutKeyTest::keysOpenNoRowBeforeTheFirstReset()
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

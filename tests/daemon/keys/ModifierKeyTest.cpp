// SPDX-License-Identifier: MIT
#include "keys/ModifierKey.h"
#include "tests/virtual/MapReader.h"

#include <QtTest>

#include <unistd.h>

namespace {

qint64 residentPages()
{
    QFile file("/proc/self/statm");
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').value(1).toLongLong();
}

} // namespace

/// Tests what key scripts cannot express.
class ModifierKeyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowWithoutKeysIsSkipped();
    void keysOpenNoRowBeforeTheFirstReset();
    void signalHasTheWholeRow();
    void memoryOfASequenceIsLimited();
    void keyListIsTheWholeFile();
    void missingFileHasAnEmptyList();

private:
    void make(MapReader reader);
    QStringList release(const QStringList& keys);

    std::unique_ptr<ModifierKey> modifiers;
    QStringList matches;
};

void ModifierKeyTest::make(MapReader reader)
{
    modifiers = std::make_unique<ModifierKey>(reader, nullptr);
    modifiers->reset();
    connect(modifiers.get(), &ModifierKey::doubleModifier, this,
            [this](const QString& action) { matches.append(action); });
}

QStringList ModifierKeyTest::release(const QStringList& keys)
{
    matches.clear();
    for (const QString& key : keys) {
        modifiers->process(key);
    }
    return matches;
}

void ModifierKeyTest::rowWithoutKeysIsSkipped()
{
    make(MapReader::ofKeys("ModifierKeys", {{}, {"Menu", "Up"}}));
    QCOMPARE(release({"", ""}), QStringList{});
    QCOMPARE(release({"Menu", "Up"}), QStringList{"A1"});
}

void ModifierKeyTest::keysOpenNoRowBeforeTheFirstReset()
{
    MapReader reader = MapReader::ofKeys("ModifierKeys", {{"Menu", "Up"}});
    ModifierKey untouched(reader, nullptr);
    QSignalSpy spy(&untouched, &ModifierKey::doubleModifier);
    untouched.process("Menu");
    untouched.process("Up");
    QCOMPARE(spy.size(), 0);
}

void ModifierKeyTest::signalHasTheWholeRow()
{
    make(MapReader({{"ModifierKeys", QVariantList{QVariantMap{{"keys", QStringList{"Menu", "Up"}},
                                                              {"eAction", "Act"},
                                                              {"receiverService", "WwwApi"},
                                                              {"validOnState", "Idle|Print"}}}}}));
    QVariantList carried;
    connect(modifiers.get(), &ModifierKey::doubleModifier, this,
            [&carried](const QString& action, const QString& receiver, const QString& states,
                       const QVariantMap& parameters) {
                carried = QVariantList{action, receiver, states, parameters};
            });
    release({"Menu", "Up"});
    const QVariantMap parameters{{"firstKey", "Menu"}, {"secondKey", "Up"}};
    QCOMPARE(carried, (QVariantList{"Act", "WwwApi", "Idle|Print", parameters}));
}

void ModifierKeyTest::memoryOfASequenceIsLimited()
{
    make(MapReader::ofKeys("ModifierKeys", {{"Menu", "Up", "Down"}}));
    const QString key = QStringLiteral("Ok");
    modifiers->process("Menu");
    const qint64 before = residentPages();
    for (int i = 0; i < 2000000; ++i) { // 16 MB of pointers if each key were stored
        modifiers->process(key);
    }
    QVERIFY((residentPages() - before) * ::sysconf(_SC_PAGESIZE) < 2000000);
    modifiers->reset();
    QCOMPARE(release({"Menu", "Up", "Down"}), QStringList{"A0"});
}

void ModifierKeyTest::keyListIsTheWholeFile()
{
    const QVariantMap content{{"ModifierKeys", QVariantList{}}, {"extra", "kept"}};
    make(MapReader(content));
    QCOMPARE(modifiers->keyList(), content);
}

void ModifierKeyTest::missingFileHasAnEmptyList()
{
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^ModifierKey::load ERROR: reading"));
    QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^ModifierKey::load ERROR: value list"));
    make(MapReader());
    QCOMPARE(modifiers->keyList(), QVariantMap{});
    QCOMPARE(release({"Menu", "Up"}), QStringList{});
}

QTEST_GUILESS_MAIN(ModifierKeyTest)
#include "ModifierKeyTest.moc"

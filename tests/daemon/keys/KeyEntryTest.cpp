// SPDX-License-Identifier: MIT
#include "keys/KeyEntry.h"
#include "keys/EnumDetail.h"

#include <QMetaEnum>
#include <QtTest>

class KeyEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entryReturnsItsFields();
    void onlyKeyIsFirstAndLast();
    void rowWithoutKeysIsInvalidAndSafe();
    void clearedEntryKeepsItsStates();
    void sectionsAndConditionsAreNamed_data();
    void sectionsAndConditionsAreNamed();
};

void KeyEntryTest::entryReturnsItsFields()
{
    const KeyEntry entry({"Menu", "Up", "Down"}, "Act", 2000, "UserMenu", "Idle|Print");
    QCOMPARE(entry.keys(), (QStringList{"Menu", "Up", "Down"}));
    QCOMPARE(entry.eAction(), QString("Act"));
    QCOMPARE(entry.timeout(), 2000);
    QCOMPARE(entry.receiverService(), QString("UserMenu"));
    QCOMPARE(entry.validOnState(), QString("Idle|Print"));
    QCOMPARE(entry.firstKey(), QString("Menu"));
    QCOMPARE(entry.lastKey(), QString("Down"));
    QCOMPARE(entry.keyCount(), 3);
    QVERIFY(entry.isValid());
}

void KeyEntryTest::onlyKeyIsFirstAndLast()
{
    const KeyEntry entry({"Help"}, {}, 0, {}, {});
    QCOMPARE(entry.firstKey(), entry.lastKey());
}

void KeyEntryTest::rowWithoutKeysIsInvalidAndSafe()
{
    const KeyEntry entry;
    QVERIFY(!entry.isValid());
    QCOMPARE(entry.firstKey(), QString());
    QCOMPARE(entry.lastKey(), QString());
    QCOMPARE(entry.timeout(), 0);
}

void KeyEntryTest::clearedEntryKeepsItsStates()
{
    KeyEntry entry({"Menu"}, "Act", 2000, "UserMenu", "Idle|Print");
    entry.clear();
    QVERIFY(!entry.isValid());
    QCOMPARE(entry.eAction(), QString("Unknown"));
    QCOMPARE(entry.timeout(), 0);
    QCOMPARE(entry.receiverService(), QString("KeyboardHandler"));
    QCOMPARE(entry.validOnState(), QString("Idle|Print"));
}

void KeyEntryTest::sectionsAndConditionsAreNamed_data()
{
    QTest::addColumn<QString>("enumeration");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("sections") << "RowKeyList"
                              << QStringList{"Keys", "ModifierKeys", "LongKeys", "ShortcutKeys"};
    QTest::newRow("conditions") << "ValidateKeyCommand"
                                << QStringList{"Undefined", "AlwaysValid", "AlwaysInvalid", "ModelIsOrvane",
                                               "ModelIsPellit"};
}

void KeyEntryTest::sectionsAndConditionsAreNamed()
{
    QFETCH(QString, enumeration);
    QFETCH(QStringList, names);
    const QMetaObject& details = EnumDetail::staticMetaObject;
    const QMetaEnum values = details.enumerator(details.indexOfEnumerator(qPrintable(enumeration)));
    QCOMPARE(values.keyCount(), names.size());
    for (int i = 0; i < names.size(); ++i) {
        QCOMPARE(QString::fromLatin1(values.valueToKey(i)), names.at(i));
    }
}

QTEST_GUILESS_MAIN(KeyEntryTest)
#include "KeyEntryTest.moc"

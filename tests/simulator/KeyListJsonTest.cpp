// SPDX-License-Identifier: MIT
#include "simulator/script/KeyListJson.h"

#include <QTemporaryDir>
#include <QtTest>

namespace {

const QString longFile = QStringLiteral("longKeyList.json");
const QString modifierFile = QStringLiteral("modifierKeyList.json");
const QString shortcutFile = QStringLiteral("shortcutKeyList.json");

const QByteArray longRow =
    R"({"keys": ["Help"], "eAction": "Hold", "receiverService": "UserMenu", "timeout": 2, "validOnState": "Idle"})";
const QByteArray pairRow =
    R"({"keys": ["Help", "Feed"], "eAction": "Both", "receiverService": "UserMenu", "validOnState": "Idle"})";

/// Files with these rows of long presses and combinations, and no shortcuts.
KeyListJson::Files files(const QByteArray& longRows, const QByteArray& modifierRows = {})
{
    return {{longFile, "{\"LongKeys\": [" + longRows + "]}"},
            {modifierFile, "{\"ModifierKeys\": [" + modifierRows + "]}"},
            {shortcutFile, "{\"ShortcutKeys\": []}"}};
}

QByteArray withField(QByteArray row, const QByteArray& field, const QByteArray& value)
{
    const int begin = row.indexOf('"' + field + '"');
    const int end = row.indexOf(field == "keys" ? "]," : ",", begin) + (field == "keys" ? 1 : 0);
    const int until = end > begin ? end : row.size() - 1;
    return row.replace(begin, until - begin, '"' + field + "\": " + value);
}

} // namespace

class KeyListJsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsSurviveConversionToFiles();
    void blanksAroundJoinedStatesAreIgnored();
    void unrepresentableRowsAreFaults_data();
    void unrepresentableRowsAreFaults();
    void eachFaultyRowIsReported();
    void listsWithoutRowsAreAFault();
    void aMissingFileIsAFault();
    void filesAreReadFromAFolder();
    void filesWithEqualJsonAreEqual();
};

void KeyListJsonTest::rowsSurviveConversionToFiles()
{
    const QVector<KeyRow> rows{{KeyRow::Kind::Long, "Hold", "UserMenu", "Idle|Error", 2, {"Menu"}},
                               {KeyRow::Kind::Modifier, "Both", "WwwApi", "Idle", 0, {"Help", "Feed", "One"}},
                               {KeyRow::Kind::Shortcut, "Chord", "Undefined", "Print", 0, {"Feed", "Ok"}}};
    const KeyListJson::Parsed parsed = KeyListJson::rowsOf(KeyListJson::filesOf(rows));
    QCOMPARE(parsed.faults, QStringList());
    QCOMPARE(KeyListJson::filesOf(parsed.rows), KeyListJson::filesOf(rows));
    QCOMPARE(parsed.rows.size(), 3);
}

void KeyListJsonTest::blanksAroundJoinedStatesAreIgnored()
{
    const KeyListJson::Parsed parsed =
        KeyListJson::rowsOf(files(withField(longRow, "validOnState", "\" Idle |  Error\"")));
    QCOMPARE(parsed.faults, QStringList());
    QCOMPARE(parsed.rows.first().validOnState, QStringLiteral("Idle|Error"));
}

void KeyListJsonTest::unrepresentableRowsAreFaults_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::newRow("half a second") << withField(longRow, "timeout", "1.5");
    QTest::newRow("a time as text") << withField(longRow, "timeout", "\"2\"");
    QTest::newRow("a negative time") << withField(longRow, "timeout", "-1");
    QTest::newRow("a huge time") << withField(longRow, "timeout", "1e300");
    QTest::newRow("two keys") << withField(longRow, "keys", R"(["Help", "Feed"])");
    QTest::newRow("no keys") << withField(longRow, "keys", "[]");
    QTest::newRow("an unknown key") << withField(longRow, "keys", "[\"Moo\"]");
    QTest::newRow("a number as key") << withField(longRow, "keys", "[7]");
    QTest::newRow("a string as keys") << withField(longRow, "keys", "\"Help\"");
    QTest::newRow("an action of two words") << withField(longRow, "eAction", "\"Key Description\"");
    QTest::newRow("an empty action") << withField(longRow, "eAction", "\"\"");
    QTest::newRow("an action of another type") << withField(longRow, "eAction", "12");
    QTest::newRow("an unknown receiver") << withField(longRow, "receiverService", "\"Moo\"");
    QTest::newRow("an unknown state") << withField(longRow, "validOnState", "\"Idle|Sleep\"");
    QTest::newRow("blanks around one state") << withField(longRow, "validOnState", "\" Idle\"");
    QTest::newRow("another field") << withField(longRow, "timeout", R"(2, "comment": "none")");
    QTest::newRow("nothing") << QByteArray("{}");
    QTest::newRow("not an object") << QByteArray("null");
}

void KeyListJsonTest::unrepresentableRowsAreFaults()
{
    QFETCH(QByteArray, row);
    QCOMPARE(KeyListJson::rowsOf(files(longRow, pairRow)).faults, QStringList());
    const QStringList faults = KeyListJson::rowsOf(files(longRow + ',' + row, pairRow)).faults;
    QCOMPARE(faults.size(), 1);
    QVERIFY2(faults.first().startsWith("Row 2 of longKeyList.json cannot be written in a script: "),
             qPrintable(faults.first()));
}

void KeyListJsonTest::eachFaultyRowIsReported()
{
    const KeyListJson::Parsed parsed = KeyListJson::rowsOf(
        files(withField(longRow, "timeout", "0.5"), pairRow + ',' + withField(pairRow, "keys", "[]")));
    QCOMPARE(parsed.faults.size(), 2);
    QVERIFY(parsed.faults.first().startsWith("Row 1 of longKeyList.json"));
    QVERIFY(parsed.faults.last().startsWith("Row 2 of modifierKeyList.json"));
    QCOMPARE(parsed.rows.size(), 3);
}

void KeyListJsonTest::listsWithoutRowsAreAFault()
{
    QCOMPARE(KeyListJson::rowsOf(files({})).faults,
             QStringList("Key lists without any row cannot be written in a script."));
}

void KeyListJsonTest::aMissingFileIsAFault()
{
    KeyListJson::Files two = files(longRow);
    two.remove(shortcutFile);
    QCOMPARE(
        KeyListJson::rowsOf(two).faults,
        QStringList("shortcutKeyList.json cannot be written in a script: it is not a JSON object with just "
                    "the list ShortcutKeys."));
    two.insert(shortcutFile, R"({"ShortcutKeys": [], "version": 1})");
    QCOMPARE(KeyListJson::rowsOf(two).faults.size(), 1);
}

void KeyListJsonTest::filesAreReadFromAFolder()
{
    const QTemporaryDir folder;
    for (const QString& name : {longFile, QStringLiteral("other.json")}) {
        QFile file(folder.filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{}") == 2);
    }
    QCOMPARE(KeyListJson::read(folder.path()), KeyListJson::Files({{longFile, "{}"}}));
}

void KeyListJsonTest::filesWithEqualJsonAreEqual()
{
    const KeyListJson::Files spaced{{longFile, " {\"LongKeys\":\n []}"}};
    QVERIFY(KeyListJson::areEqual({{longFile, "{\"LongKeys\": []}"}}, spaced));
    QVERIFY(!KeyListJson::areEqual({{longFile, "{\"LongKeys\": [1]}"}}, spaced));
    QVERIFY(!KeyListJson::areEqual({{modifierFile, "{\"LongKeys\": []}"}}, spaced));
    QVERIFY(!KeyListJson::areEqual({{longFile, "no JSON"}}, {{longFile, "nor this"}}));
    QVERIFY(KeyListJson::areEqual({{longFile, "no JSON"}}, {{longFile, "no JSON"}}));
}

QTEST_APPLESS_MAIN(KeyListJsonTest)
#include "KeyListJsonTest.moc"

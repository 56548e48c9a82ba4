// SPDX-License-Identifier: MIT
#include "workbench/web/ListFindings.h"

#include "simulator/script/KeyListJson.h"

#include <QJsonArray>
#include <QtTest>

#include <algorithm>

namespace {

const QString longPresses = QStringLiteral("longKeyList.json");
const QString combinations = QStringLiteral("modifierKeyList.json");
const QString shortcuts = QStringLiteral("shortcutKeyList.json");

KeyListJson::Files installed()
{
    return KeyListJson::read(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER));
}

/// The installed lists with a mistake.
KeyListJson::Files with(const QString& file, const QByteArray& right, const QByteArray& wrong)
{
    KeyListJson::Files files = installed();
    QByteArray& text = files[file];
    const int at = text.indexOf(right);
    return at == -1 ? KeyListJson::Files() : (text.replace(at, right.size(), wrong), files);
}

} // namespace

/// Mistakes that authors of key lists make, of most of which the daemon's log says nothing.
class ListFindingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMistakeIsNamed_data();
    void aMistakeIsNamed();
    void theInstalledListsHaveNoFindings();
    void findingsOfInstalledRowsAreLeftOut();
    void ofManyFindingsSomeAreShown();
    void aLongListHasAShortAnswer();
};

void ListFindingsTest::aMistakeIsNamed_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<QByteArray>("wrong");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("message");

    const auto mistake = [](const char* name, const QString& file, const char* right, const char* wrong,
                            const char* id, const char* message) {
        QTest::newRow(name) << file << QByteArray(right) << QByteArray(wrong) << QString(id)
                            << QString(message);
    };
    mistake("a missing comma", combinations, "\"Idle\" },", "\"Idle\" }", "syntax", "the file is not JSON");
    mistake("a comma after the last row", longPresses, "\"Error\" }\n", "\"Error\" },\n", "syntax",
            "the file is not JSON");
    mistake("an empty file", shortcuts, installed().value(shortcuts), "", "syntax", "the file is empty");
    mistake("a misspelt section", combinations, "ModifierKeys", "modifierKeys", "section", "has no list");
    mistake("a row that is a text", shortcuts, "{ \"keys\": [\"Function\", \"Up\"]",
            "\"Function\", { \"keys\": [\"Function\", \"Up\"]", "element", "not a row");
    mistake("a misspelt receiver", shortcuts, "UserMenu", "UserMenue", "unknown-service",
            "\"UserMenue\" is not a service");
    mistake("a misspelt member for the receiver", shortcuts, "receiverService", "recieverService", "member",
            "\"recieverService\" is ignored");
    mistake("a misspelt member for the action", combinations, "eAction", "eaction", "member",
            "\"eaction\" is ignored");
    mistake("a misspelt member for the time", longPresses, "\"timeout\": 3", "\"timeOut\": 3", "member",
            "\"timeOut\" is ignored");
    mistake("no time", longPresses, ", \"timeout\": 3", "", "time", "has no \"timeout\"");
    mistake("a time below half a second", longPresses, "\"timeout\": 3", "\"timeout\": 0.4", "time",
            "0.4 is read as 0 s");
    mistake("a rounded time", longPresses, "\"timeout\": 3", "\"timeout\": 1.5", "value",
            "1.5 is read as 2 s");
    mistake("a time in milliseconds", longPresses, "\"timeout\": 3", "\"timeout\": 3000", "long-hold",
            "held for 3000 s");
    mistake("a misspelt key", combinations, "\"Chs\"", "\"Csh\"", "unknown-key", "\"Csh\" is not a key");
    mistake("a key in other letters", shortcuts, "\"Up\"", "\"up\"", "unknown-key", "\"up\" is not a key");
    mistake("keys that are not a list", longPresses, "[\"Help\"]", "\"Help\"", "value",
            "the keys are not a list");
    mistake("no keys", combinations, "[\"Help\", \"Feed\"]", "[]", "no-keys", "has no keys");
    mistake("a misspelt state", longPresses, "\"Idle | Error\"", "\"Idel | Error\"", "unknown-state",
            "\"Idel\" is not a state");
    mistake("joined states of a combination", combinations, "\"Idle\"", "\"Idle | Print\"", "joined-states",
            "only long presses");
    mistake("a combination for Print", combinations, "\"Idle\"", "\"Print\"", "state-change",
            "unless the state changes");
    mistake("a shortcut for Startup", shortcuts, "\"Update\"", "\"Startup\"", "never",
            "no keys announce \"UpdateStatus\"");
    mistake("a pair twice", combinations, "[\"Help\", \"Ok\"]", "[\"Help\", \"Feed\"]", "same-keys",
            "has the same keys");
    mistake("a shortcut twice", shortcuts, "[\"Function\", \"Down\"]", "[\"Function\", \"Up\"]", "hidden",
            "no keys announce \"VolumeDown\"");
    mistake("a long press twice", longPresses, "[\"Feed\"]", "[\"Back\"]", "hidden",
            "no keys announce \"CancelJob\"");
    mistake("a row of three keys in front", combinations, "[\"Help\", \"Feed\"]",
            "[\"Help\", \"Feed\", \"One\"]", "hidden", "no keys announce \"RepeatMessage\"");
    mistake("a member twice", shortcuts, "\"eAction\": \"VolumeUp\"",
            "\"eAction\": \"VolumeUp\", \"eAction\": \"Louder\"", "duplicate", "\"eAction\" is there twice");
}

void ListFindingsTest::aMistakeIsNamed()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, right);
    QFETCH(QByteArray, wrong);
    QFETCH(QString, id);
    QFETCH(QString, message);
    const KeyListJson::Files files = with(file, right, wrong);
    QVERIFY(!files.isEmpty());
    const ListFindings findings = ListFindings::of(files, "Pellit");
    const QJsonArray all = findings.toJson().value("findings").toArray();
    const bool isNamed = std::any_of(all.begin(), all.end(), [&](const QJsonValue& each) {
        const QJsonObject finding = each.toObject();
        return finding.value("id") == id && finding.value("file") == file &&
               finding.value("message").toString().contains(message);
    });
    const QString text = findings.toText();
    QVERIFY2(isNamed, qPrintable(text));
    QVERIFY2(text.contains('[' + id + ']') && text.contains("--> " + file), qPrintable(text));
}

/// Their findings are intended.
void ListFindingsTest::theInstalledListsHaveNoFindings()
{
    const ListFindings findings = ListFindings::of(installed(), "Pellit");
    QCOMPARE(findings.toText(), QString());
    QCOMPARE(findings.toJson().value("findings").toArray().size(), 0);
}

/// Only the changed row is of interest.
void ListFindingsTest::findingsOfInstalledRowsAreLeftOut()
{
    const QJsonArray findings =
        ListFindings::of(with(combinations, "\"Chs\", \"Up\"", "\"Chs\", \"Upp\""), "Pellit")
            .toJson()
            .value("findings")
            .toArray();
    QCOMPARE(findings.size(), 1);
    QCOMPARE(findings.first().toObject().value("id").toString(), QString("unknown-key"));
}

void ListFindingsTest::ofManyFindingsSomeAreShown()
{
    const QByteArray many = "{ \"LongKeys\": [" + QByteArray("5, ").repeated(29) + "5 ] }";
    const ListFindings findings =
        ListFindings::of(with(longPresses, installed().value(longPresses), many), "Pellit");
    const QString text = findings.toText();
    QCOMPARE(text.count("error[element]"), 20);
    QVERIFY(text.contains("\n... and "));
    QVERIFY(findings.toJson().value("findings").toArray().size() >= 30);
}

void ListFindingsTest::aLongListHasAShortAnswer()
{
    const QByteArray many = "{ \"LongKeys\": [" + QByteArray("{},").repeated(5000) + "{} ] }";
    const QJsonObject json =
        ListFindings::of(with(longPresses, installed().value(longPresses), many), "Pellit").toJson();
    QHash<QString, int> counts; // by ids
    for (const QJsonValue& finding : json.value("findings").toArray()) {
        ++counts[finding.toObject().value("id").toString()];
    }
    QCOMPARE(counts.value("member"), ListFindings::maxAlike);
    QVERIFY(json.value("leftOut").toInt() > 5000);
    QVERIFY(json.value("rows").toInt() > 5000);
    QCOMPARE(json.value("unsearched").toArray().size(), ListFindings::maxAlike);
}

QTEST_GUILESS_MAIN(ListFindingsTest)
#include "ListFindingsTest.moc"

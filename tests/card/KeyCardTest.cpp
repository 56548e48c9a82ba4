// SPDX-License-Identifier: MIT
#include "card/CardJson.h"
#include "model/Alphabet.h"
#include "tests/card/CardKeyLists.h"

#include <QJsonArray>
#include <QtTest>

namespace {

QJsonObject stateOf(const KeyLists& lists, const QString& state, const QString& model = "Pellit")
{
    for (const QJsonValue& card : toJson(KeyCard::from(lists, model)).value("states").toArray()) {
        if (card["state"].toString() == state) {
            return card.toObject();
        }
    }
    return {};
}

/// The entry of this kind for `keys`, which are separated by blanks.
QJsonObject entryOf(const QJsonObject& state, const QString& kind, const QString& keys)
{
    for (const QJsonValue& entry : state.value("entries").toArray()) {
        if (entry["kind"].toString() == kind && entry["keys"].toVariant().toStringList().join(' ') == keys) {
            return entry.toObject();
        }
    }
    return {};
}

QStringList statesOf(const KeyLists& lists)
{
    QStringList states;
    for (const KeyCardState& state : KeyCard::from(lists, "Pellit").states) {
        states.append(state.state);
    }
    return states;
}

/// "ROW REASON" for each row that never works.
QStringList reasons(const KeyLists& lists)
{
    QStringList texts;
    for (const KeyCardDeadRow& row : KeyCard::from(lists, "Pellit").deadRows) {
        texts.append(QString::number(row.row) + ' ' + row.why);
    }
    return texts;
}

QStringList g_log;

} // namespace

/// Tests the text of a card; KeyCardPlayTest checks that it is true.
class KeyCardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesAreDescribed_data();
    void entriesAreDescribed();
    void notesOfEntries_data();
    void notesOfEntries();
    void startupHasNoEntries();
    void allStatesAreListed();
    void undefinedStateIsListedIfARowContainsIt();
    void deadRowsAreExplained_data();
    void deadRowsAreExplained();
    void deadRowsAreDescribed();
    void deadRowsAreProved();
    void unreadableFilesAreNoted_data();
    void unreadableFilesAreNoted();
    void nothingIsLogged();
    void hugeListsAreAccepted_data();
    void hugeListsAreAccepted();
};

void KeyCardTest::entriesAreDescribed_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("how");
    QTest::addColumn<int>("holdMs");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("receivers");
    QTest::newRow("lone key") << "Idle"
                              << "single"
                              << "Up"
                              << "Press and release Up." << 0 << "SingleKey" << QStringList{"UserMenu"};
    QTest::newRow("lone key for two")
        << "Idle"
        << "single"
        << "Feed"
        << "Press and release Feed." << 0 << "SingleKey" << QStringList{"PrintManager", "UserMenu"};
    QTest::newRow("key while updating")
        << "Update"
        << "single"
        << "Feed"
        << "Press and release Feed." << 0 << "SingleKey" << QStringList{"UpdateManager"};
    QTest::newRow("long press") << "Error"
                                << "long"
                                << "Menu"
                                << "Hold Menu for 2.25 seconds." << 2250 << "MainMenu"
                                << QStringList{"UserMenu"};
    QTest::newRow("combination") << "Idle"
                                 << "combination"
                                 << "Help Feed"
                                 << "Press and release Help, then Feed." << 0 << "PaperStatus"
                                 << QStringList{"PrintManager"};
    QTest::newRow("combination of three") << "Idle"
                                          << "combination"
                                          << "Function Help One"
                                          << "Press and release Function, then Help, then One." << 0
                                          << "PrintSelfTest" << QStringList{"PrintManager"};
    QTest::newRow("shortcut") << "PrintOff"
                              << "shortcut"
                              << "Feed Ok"
                              << "Hold Feed and press Ok." << 0 << "LoadPaper" << QStringList{"PrintManager"};
    QTest::newRow("factory reset") << "Print"
                                   << "hold"
                                   << "FactoryReset"
                                   << "Hold FactoryReset for 5 seconds." << 5000 << "FactoryReset"
                                   << QStringList{"WwwApi"};
}

void KeyCardTest::entriesAreDescribed()
{
    QFETCH(QString, state);
    QFETCH(QString, kind);
    QFETCH(QString, keys);
    QFETCH(int, holdMs);
    const QJsonObject entry = entryOf(stateOf(CardKeyLists::installed(), state), kind, keys);
    QTEST(entry["how"].toString(), "how");
    QTEST(entry["action"].toString(), "action");
    QTEST(entry["receivers"].toVariant().toStringList(), "receivers");
    QCOMPARE(entry["holdMs"].toInt(), holdMs);
    QCOMPARE(entry.contains("holdMs"), holdMs > 0);
}

void KeyCardTest::notesOfEntries_data()
{
    QTest::addColumn<QString>("lists");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QStringList>("notes");
    QTest::newRow("several times")
        << "long presses"
        << "Idle"
        << "long"
        << "Up"
        << QStringList{"Unknown state \"\".",
                       "Keys are ignored in Startup, except for a long press that began before.",
                       "Announced 2 times."};
    QTest::newRow("also a single key")
        << "long presses"
        << "Print"
        << "long"
        << "Up"
        << QStringList{"Unknown state \"\".",
                       "Keys are ignored in Startup, except for a long press that began before.",
                       "Each release is also announced as a single key."};
    QTest::newRow("Menu that opens") << "Menu after a Help that opens nothing"
                                     << "Idle"
                                     << "combination"
                                     << "Help Menu Up"
                                     << QStringList{"Without Help before it, Menu is announced at once."};
    QTest::newRow("Menu that closes") << "Menu after a Help that opens nothing"
                                      << "Idle"
                                      << "combination"
                                      << "Chs Menu" << QStringList{"Menu is also announced as a single key."};
    QTest::newRow("longer row that a pair begins")
        << "closing key begins a longer row"
        << "Idle"
        << "combination"
        << "Help Ok Up Feed"
        << QStringList{"Row 1 is complete with Ok and begins the sequence.",
                       "Action1 and Action4 are also announced."};
    QTest::newRow("longer row that Menu begins as the end of a pair")
        << "Menu closes after a Help between and begins a longer row"
        << "Idle"
        << "combination"
        << "Chs Help Menu Ok Help"
        << QStringList{"Row 1 is complete with Menu and begins the sequence.",
                       "Without Help before it, Menu is announced at once.",
                       "Action1 and Action2 are also announced."};
    QTest::newRow("combination within a shortcut")
        << "shortcut and combination of one pair"
        << "Idle"
        << "shortcut"
        << "Help Feed" << QStringList{"Action2 is also announced if Help is released first."};
    QTest::newRow("factory reset within a long press")
        << "long presses"
        << "Idle"
        << "long"
        << "FactoryReset" << QStringList{"The factory reset is also announced, after 5 seconds."};
    QTest::newRow("Menu after Help") << "Menu after a Help that opens a row"
                                     << "Idle"
                                     << "combination"
                                     << "Help Menu" << QStringList{};
}

void KeyCardTest::notesOfEntries()
{
    QFETCH(QString, lists);
    QFETCH(QString, state);
    QFETCH(QString, kind);
    QFETCH(QString, keys);
    const QJsonObject entry = entryOf(stateOf(CardKeyLists::odd().value(lists), state), kind, keys);
    QVERIFY(!entry.isEmpty());
    QTEST(entry["notes"].toVariant().toStringList(), "notes");
}

void KeyCardTest::startupHasNoEntries()
{
    const QJsonObject startup = stateOf(CardKeyLists::installed(), "Startup");
    QCOMPARE(startup["entries"].toArray(), QJsonArray{});
    QCOMPARE(startup["notes"].toArray().size(), 1);
}

void KeyCardTest::allStatesAreListed()
{
    QCOMPARE(statesOf(CardKeyLists::installed()),
             (QStringList{"Startup", "Idle", "Print", "PrintOff", "Update", "Error"}));
}

void KeyCardTest::undefinedStateIsListedIfARowContainsIt()
{
    const KeyLists lists = CardKeyLists::odd().value("shortcuts");
    QCOMPARE(statesOf(lists).last(), "Undefined");
    QVERIFY(!entryOf(stateOf(lists, "Undefined"), "shortcut", "Ten One").isEmpty());
}

void KeyCardTest::deadRowsAreExplained_data()
{
    QTest::addColumn<QString>("lists");
    QTest::addColumn<QStringList>("reasons");
    QTest::newRow("long presses")
        << "long presses"
        << QStringList{"1 Only the last row for a key works; for Help, that is row 2.",
                       "5 Unknown state \"Idle \".",
                       "6 Keys are ignored in Startup, except for a long press that began before.",
                       "7 The action is dropped, because its receiver is \"Undefined\".",
                       "8 The panel has no key \"Bell\".",
                       "9 The panel has no key \"Unknown\".",
                       "10 The row has no keys.",
                       "14 Unknown state \"Dreaming\". Unknown state \"idle\"."};
    QTest::newRow("shortcuts")
        << "shortcuts"
        << QStringList{"1 The action is dropped, because its receiver is \"Undefined\".",
                       "2 Only the first row for a pair of keys works; for Function and Up, that is row 1.",
                       "6 Only a long press can join states; \"Idle|Print\" is not a state.",
                       "7 Only the first row for a pair of keys works; for Ok and Chs, that is row 6.",
                       "8 Keys are ignored in Startup, except for a long press that began before.",
                       "10 The panel has no key \"Bell\".",
                       "12 The row has no keys."};
    QTest::newRow("longer row hides others")
        << "longer row hides others"
        << QStringList{"2 The row has no keys.", "5 Row 3 has three or more keys and hides this row.",
                       "6 No combination can begin in Print: each key is announced and forgotten there.",
                       "7 Only the first row of three or more keys can match, and that is row 3.",
                       "8 Row 7 has three or more keys and hides this row."};
    QTest::newRow("pair breaks longer row")
        << "pair breaks longer row"
        << QStringList{"2 Row 1 is complete with Up and breaks the sequence.",
                       "3 Row 2 has three or more keys and hides this row."};
    QTest::newRow("Menu after a Help that opens a row")
        << "Menu after a Help that opens a row"
        << QStringList{"1 Menu is announced at its release, and all keys before it are forgotten.",
                       "3 The panel has no key \"Bell\"."};
    QTest::newRow("Menu in the middle")
        << "Menu in the middle"
        << QStringList{"1 Menu is announced at its release, and all keys before it are forgotten.",
                       "2 Row 1 has three or more keys and hides this row."};
    QTest::newRow("closing key begins a longer row")
        << "closing key begins a longer row"
        << QStringList{"5 Row 3 has three or more keys and hides this row."};
    QTest::newRow("closing Menu begins a longer row") << "closing Menu begins a longer row" << QStringList{};
    QTest::newRow("closing key begins a longer row and breaks it")
        << "closing key begins a longer row and breaks it"
        << QStringList{"3 Row 2 is complete with Up and breaks the sequence.",
                       "4 Row 3 has three or more keys and hides this row."};
    QTest::newRow("odd texts") << "odd texts" << QStringList{"1 Unknown state \"%1\"."};
}

void KeyCardTest::deadRowsAreExplained()
{
    QFETCH(QString, lists);
    QTEST(reasons(CardKeyLists::odd().value(lists)), "reasons");
}

void KeyCardTest::deadRowsAreDescribed()
{
    const KeyLists lists{{"shortcutKeyList.json",
                          R"({"ShortcutKeys": [7, {"keys": ["Up", "Bell"], "eAction": "Ring",
                              "receiverService": "UserMenu", "validOnState": "Idle"}]})"}};
    QJsonArray never = toJson(KeyCard::from(lists, "Pellit"))["never"].toArray();
    QJsonObject first = never.first().toObject();
    first.remove("proof");
    never.replace(0, first);
    const QJsonObject row{{"kind", "shortcut"},
                          {"row", 1},
                          {"keys", QJsonArray{"Up", "Bell"}},
                          {"action", "Ring"},
                          {"receiver", "UserMenu"},
                          {"validOnState", "Idle"},
                          {"why", "The panel has no key \"Bell\"."}};
    QCOMPARE(never, QJsonArray{row});
}

void KeyCardTest::deadRowsAreProved()
{
    const QJsonObject card = toJson(KeyCard::from(CardKeyLists::odd().value("shortcuts"), "Pellit"));
    QCOMPARE(card["environment"].toString(),
             "a person with 2 fingers, only keys of the panel, the state stays as it is, no keyboard test");
    for (const QJsonValue& row : card["never"].toArray()) {
        const int situations = row["proof"]["situations"].toInt();
        const bool namesState = model::Alphabet::stateOf(row["validOnState"].toString()).has_value();
        QCOMPARE(situations > 0, namesState);
        QCOMPARE(row["proof"]["steps"].toInt() > situations, namesState);
    }
}

void KeyCardTest::unreadableFilesAreNoted_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isNoted");
    QTest::newRow("nothing") << QByteArray() << true;
    QTest::newRow("broken") << QByteArray("{\"LongKeys\": [") << true;
    QTest::newRow("array") << QByteArray("[]") << true;
    QTest::newRow("no section") << QByteArray("{}") << true;
    QTest::newRow("section that is not a list") << QByteArray("{\"LongKeys\": {}}") << true;
    QTest::newRow("over 1 MiB") << QByteArray("{\"LongKeys\": []}").leftJustified(1024 * 1024 + 1) << true;
    QTest::newRow("1 MiB") << QByteArray("{\"LongKeys\": []}").leftJustified(1024 * 1024) << false;
    QTest::newRow("empty list") << QByteArray("{\"LongKeys\": []}") << false;
}

void KeyCardTest::unreadableFilesAreNoted()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, isNoted);
    KeyLists lists = CardKeyLists::installed();
    lists.insert("longKeyList.json", content);
    const QJsonArray notes = toJson(KeyCard::from(lists, "Pellit"))["notes"].toArray();
    QCOMPARE(notes, isNoted ? QJsonArray{"longKeyList.json has no readable list, so none of its rows work."}
                            : QJsonArray{});
}

void KeyCardTest::nothingIsLogged()
{
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { g_log.append(text); });
    const KeyCard card = KeyCard::from({}, "Pellit");
    qCritical("still heard");
    qInstallMessageHandler(nullptr);
    QCOMPARE(card.notes.size(), 3);
    QCOMPARE(g_log, QStringList{"still heard"});
}

void KeyCardTest::hugeListsAreAccepted_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("unproved");
    const auto longerOf = [](int keys) {
        return "{\"keys\":[\"Up\"" + QByteArray(",\"Up\"").repeated(keys - 1) + "]}";
    };
    const QByteArray pair = ",{\"keys\":[\"Up\",\"Up\"],\"eAction\":\"A\",\"validOnState\":\"Idle\"}";
    const QByteArray otherPair = QByteArray(pair).replace("\"Up\"]", "\"Ok\"]");
    const auto combinations = [](const QByteArray& rows) { return "{\"ModifierKeys\":[" + rows + "]}"; };
    const QByteArray name("modifierKeyList.json");
    QTest::newRow("many pairs with the ends of a very long row")
        << name << combinations(longerOf(50000) + pair.repeated(10000))
        << QStringList{
               "Whether 10000 rows of modifierKeyList.json work, such as row 2, is not proved, because "
               "the search reached its limit."};
    QTest::newRow("many pairs with the ends of a long row")
        << name << combinations(longerOf(500) + pair.repeated(10000))
        << QStringList{
               "Whether 10000 rows of modifierKeyList.json work, such as row 2, is not proved, because "
               "the search reached its limit."};
    QTest::newRow("many pairs before a very long row")
        << name << combinations("{}" + otherPair.repeated(10000) + ',' + longerOf(50000)) << QStringList{};
    QTest::newRow("many hidden pairs")
        << name << combinations(longerOf(3) + otherPair.repeated(10000)) << QStringList{};
    QTest::newRow("many states") << QByteArray("longKeyList.json")
                                 << "{\"LongKeys\":[{\"keys\":[\"Up\"],\"validOnState\":\"Idle" +
                                        QByteArray("|Idle|x").repeated(100000) + "\"}]}"
                                 << QStringList{};
}

void KeyCardTest::hugeListsAreAccepted()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, content);
    const KeyCard card = KeyCard::from({{name, content}}, "Pellit");
    QVERIFY(QJsonDocument(toJson(card)).toJson().size() < 16 * content.size());
    QTEST(QStringList(card.notes.mid(2)), "unproved"); // after the two files that are missing
}

QTEST_GUILESS_MAIN(KeyCardTest)
#include "KeyCardTest.moc"

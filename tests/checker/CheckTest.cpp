// SPDX-License-Identifier: MIT
#include "checker/Check.h"
#include "checker/FindingLines.h"
#include "checker/FindingText.h"
#include "keys/KeyListFile.h"
#include "tests/checker/ListTexts.h"

#include <QtTest>

#include <algorithm>

using namespace checker;
using model::List;

/// Each finding of `keyboard-handler-keys check` about small lists.
class CheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findings_data();
    void findings();
    void faultsOfAFile_data();
    void faultsOfAFile();
    void whatIsMissingInJsonIsNamed_data();
    void whatIsMissingInJsonIsNamed();
    void installedListsHaveOnlySilentGestures();
    void optionsOfAPerson_data();
    void optionsOfAPerson();
    void aCombinationCanBeTooSlow();
    void manyRowsEnd_data();
    void manyRowsEnd();
    void manyMembersEnd();
    void aSearchThatEndsAtItsLimitProvesNothing();
    void summaryOfWhatIsProved();
    void summaryOfManyRows();
    void silentGesturesCanBeAllowed();
    void joinedStatesHaveHelp();
    void rowsWithTheSameKeysHaveHelp_data();
    void rowsWithTheSameKeysHaveHelp();
    void textOfAFinding();
    void textOfAFindingInTwoFiles();
    void lineOfAFinding();
    void lineOfAFindingWithARemark();
    void textOfAFindingInALongLine();
    void namesAreNeverPrintedRaw();

private:
    static QStringList found(const ListSources& sources, const CheckOptions& options = {});
};

/// Each finding as "level id line:column message".
QStringList CheckTest::found(const ListSources& sources, const CheckOptions& options)
{
    QStringList lines;
    const CheckResult result = check(sources, options);
    for (const Finding& finding : result.findings) {
        const Position at = sources.file(finding.place.list).position(finding.place.range.begin);
        lines += QStringLiteral("%1 %2 %3:%4 %5")
                     .arg(nameOf(finding.level), finding.id)
                     .arg(at.line)
                     .arg(at.column)
                     .arg(finding.message);
    }
    return lines;
}

namespace {

QByteArray row(const QByteArray& keys, const QByteArray& action, const QByteArray& state = "Idle",
               const QByteArray& more = "")
{
    return "{ \"keys\": [" + keys + "], \"eAction\": \"" + action +
           "\", \"receiverService\": \"UserMenu\", \"validOnState\": \"" + state + "\"" + more + " }\n";
}

QByteArray held(const QByteArray& timeout, const QByteArray& state = "Idle")
{
    return row("\"Help\"", "A", state, ", \"timeout\": " + timeout);
}

} // namespace

void CheckTest::findings_data()
{
    QTest::addColumn<QByteArray>("longPresses");
    QTest::addColumn<QByteArray>("combinations");
    QTest::addColumn<QByteArray>("shortcuts");
    QTest::addColumn<QStringList>("expected");

    const auto longPress = [](const char* name, const QByteArray& rows, const QStringList& expected) {
        QTest::newRow(name) << rows << QByteArray() << QByteArray() << expected;
    };
    const auto combination = [](const char* name, const QByteArray& rows, const QStringList& expected) {
        QTest::newRow(name) << QByteArray() << rows << QByteArray() << expected;
    };
    const auto shortcut = [](const char* name, const QByteArray& rows, const QStringList& expected) {
        QTest::newRow(name) << QByteArray() << QByteArray() << rows << expected;
    };

    longPress("a long press for Idle", held("2"), {});
    longPress(
        "a long press for another state is silent in Idle", held("2", "Print"),
        {"warning silent 2:1 in Idle, holding Help for 2.25 s (A) causes neither speech nor an action"});
    longPress(
        "a time below half a second", held("0.4"),
        {"error time 2:103 0.4 is read as 0 s: the action repeats 30 times a second while the key is held"});
    longPress("a time of 0", held("0"),
              {"error time 2:103 a time of 0 s: the action repeats 30 times a second while the key is held"});
    longPress("a rounded time", held("1.5"), {"warning value 2:103 1.5 is read as 2 s"});
    longPress("a time that is true", held("true"), {"warning value 2:103 true is read as 1 s"});
    longPress("a time that is a text", held("\"2\""), {"warning value 2:103 \"2\" is read as 2 s"});
    longPress("a whole time with a point", held("2.0"), {});
    longPress("half an hour", held("3000"), {"warning long-hold 2:103 the key must be held for 3000 s"});
    longPress("no time", row("\"Help\"", "A"),
              {"error time 2:1 the row has no \"timeout\": the action repeats 30 times a second while the "
               "key is held"});
    longPress("a misspelt time", row("\"Help\"", "A", "Idle", ", \"timeOut\": 2"),
              {"error member 2:92 \"timeOut\" is ignored: did you mean \"timeout\"?"});
    longPress("two keys", row("\"Help\", \"Up\"", "A", "Idle", ", \"timeout\": 2"),
              {"warning value 2:20 a long press has one key: only \"Help\" counts"});
    longPress("two rows for a key", held("2") + "," + held("3"),
              {"error hidden 2:11 row 1 never announces \"A\"; row 2 does in Idle"});
    longPress("two rows for a key with two actions",
              held("2") + "," + row("\"Help\"", "B", "Idle", ", \"timeout\": 2"),
              {"error hidden 2:11 no keys announce \"A\""});
    longPress("an unknown state", held("2", "Idle | Sleep"),
              {"error unknown-state 2:84 \"Sleep\" is not a state"});
    longPress("a misspelt state", held("2", "Idel"),
              {"error unknown-state 2:84 \"Idel\" is not a state: did you mean \"Idle\"?"});
    longPress("states without a vertical bar", held("2", "Idle Print"),
              {"error unknown-state 2:84 \"Idle Print\" is not a state: did you mean \"Idle | Print\"?"});
    longPress("a state twice", held("2", "Idle|Idle"),
              {"warning duplicate 2:84 \"Idle|Idle\" names a state twice, and the action is announced twice "
               "there"});

    combination("a pair", row("\"Help\", \"Feed\"", "A"), {});
    combination("a pair for another state", row("\"Help\", \"Feed\"", "A", "Print"),
                {"error state-change 2:92 no keys announce \"A\" in Print unless the state changes between "
                 "the keys or the keyboard test runs"});
    combination("a pair behind a row of three keys",
                row("\"Function\", \"Help\", \"One\"", "A") + "," + row("\"Help\", \"Feed\"", "B"),
                {"error hidden 3:12 no keys announce \"B\""});
    combination("a pair twice", row("\"Help\", \"Feed\"", "A") + "," + row("\"Help\", \"Feed\"", "B"),
                {"note also 2:1 tapping Help, then Feed (A) announces \"B\" as well",
                 "warning same-keys 3:12 row 1 has the same keys, and both actions are announced"});
    combination("a hidden pair twice",
                row("\"Function\", \"Help\", \"One\"", "A") + "," + row("\"Help\", \"Feed\"", "B") + "," +
                    row("\"Help\", \"Feed\"", "C"),
                {"error hidden 3:12 no keys announce \"B\"", "error hidden 4:12 no keys announce \"C\""});
    combination("a misspelt pair twice",
                row("\"Hlep\", \"Feed\"", "A") + "," + row("\"Hlep\", \"Feed\"", "B"),
                {"error unknown-key 2:12 \"Hlep\" is not a key: did you mean \"Help\"?",
                 "error unknown-key 3:13 \"Hlep\" is not a key: did you mean \"Help\"?"});
    combination("joined states", row("\"Help\", \"Feed\"", "A", "Idle|Print"),
                {"error joined-states 2:92 \"Idle|Print\" is not a state: a combination or shortcut has one "
                 "state, and only "
                 "long presses can join several"});
    const QString needsOne =
        "is not a state: a combination or shortcut has one state, and only long presses can join "
        "several";
    combination("states without a vertical bar", row("\"Help\", \"Feed\"", "A", "Idle, Print"),
                {"error joined-states 2:92 \"Idle, Print\" " + needsOne});
    combination("a state and a half", row("\"Help\", \"Feed\"", "A", "Idle Prin"),
                {"error unknown-state 2:92 \"Idle Prin\" is not a state"});
    combination("a misspelt key", row("\"Hlep\", \"Feed\"", "A"),
                {"error unknown-key 2:12 \"Hlep\" is not a key: did you mean \"Help\"?"});
    combination("no keys", row("", "A"), {"error no-keys 2:11 the row has no keys"});
    combination(
        "keys as a text",
        R"({ "keys": "Help", "eAction": "A", "receiverService": "UserMenu", "validOnState": "Idle" })",
        {"warning value 2:11 the keys are not a list of names: they are read as the list [\"Help\"]"});
    const QByteArray rest = R"(, "eAction": "A", "receiverService": "UserMenu", "validOnState": "Idle" })";
    combination("two keys as a text", R"({ "keys": "Help, Feed")" + rest,
                {"error unknown-key 2:11 the keys are not a list of names: they are read as the list "
                 "[\"Help, Feed\"], "
                 "and \"Help, Feed\" is not a key: did you mean [\"Help\", \"Feed\"]?"});
    combination(
        "a misspelt key as a text", R"({ "keys": "Hlep")" + rest,
        {"error unknown-key 2:11 the keys are not a list of names: they are read as the list [\"Hlep\"], "
         "and \"Hlep\" is not a key: did you mean \"Help\"?"});
    combination("keys as an object", R"({ "keys": {})" + rest,
                {"error no-keys 2:11 the keys are not a list of names: they are read as no keys"});
    combination("a time", row("\"Help\", \"Feed\"", "A", "Idle", ", \"timeout\": 2"),
                {"warning member 2:100 \"timeout\" is ignored: only long presses have a time"});
    combination("an element that is not a row", "5",
                {"error element 2:1 the element is not a row, and the daemon skips it"});

    shortcut("a shortcut", row("\"Function\", \"Up\"", "A"), {});
    shortcut(
        "a shortcut for another state", row("\"Feed\", \"Ok\"", "A", "PrintOff"),
        {"warning silent 2:1 in Idle, holding Feed and pressing Ok (A) causes neither speech nor an action"});
    shortcut("the same shortcut twice",
             row("\"Function\", \"Up\"", "A") + "," + row("\"Function\", \"Up\"", "B"),
             {"error hidden 3:12 no keys announce \"B\""});
    QTest::newRow("a shortcut in Startup for the action of a long press")
        << held("2") << QByteArray() << row("\"Feed\", \"Ok\"", "A", "Startup")
        << QStringList(
               {"warning silent 2:1 in Idle, holding Feed and pressing Ok (A) causes neither speech nor an "
                "action",
                "error never 2:11 row 1 never announces \"A\"; row 1 of longKeyList.json does in Idle"});
    QTest::newRow("a combination in Print for the action of a long press")
        << held("2", "Idle|Print") << row("\"Feed\", \"Ok\"", "A", "Print") << QByteArray()
        << QStringList(
               "error state-change 2:90 row 1 does not announce \"A\" in Print unless the state changes "
               "between the keys or the keyboard test runs");
    shortcut("a shortcut for two states",
             row("\"Function\", \"Up\"", "A") + "," + row("\"Function\", \"Up\"", "A", "Update"),
             {"error hidden 3:12 row 2 never announces \"A\"; row 1 does in Idle"});
    shortcut("three keys", row("\"Function\", \"Help\", \"Up\"", "A"),
             {"warning value 2:24 a shortcut has two keys: only \"Function\" and \"Up\" count"});
    shortcut(
        "a misspelt receiver",
        R"({ "keys": ["Function", "Up"], "eAction": "A", "receiverService": "UserMenue", "validOnState": "Idle" })",
        {"error unknown-service 2:66 \"UserMenue\" is not a service, and none reacts to the action: did you "
         "mean \"UserMenu\"?"});
    shortcut(
        "a misspelt member",
        R"({ "keys": ["Function", "Up"], "eaction": "A", "receiverService": "UserMenu", "validOnState": "Idle" })",
        {"error member 2:31 \"eaction\" is ignored: did you mean \"eAction\"?"});
    shortcut(
        "a receiver that drops the action",
        R"({ "keys": ["Function", "Up"], "eAction": "A", "receiverService": "Undefined", "validOnState": "Idle" })",
        {"warning undefined-receiver 2:66 the action is dropped, because its receiver is \"Undefined\""});
    shortcut("an unknown key that does not count", row("\"Function\", \"Hlep\", \"Up\"", "A"),
             {"warning value 2:24 a shortcut has two keys: only \"Function\" and \"Up\" count"});
    shortcut("visible characters of other planes", row("\"Function\", \"Up\"", "\xF0\x9F\x94\x91"), {});
    shortcut("invisible characters", row("\"Function\", \"Up\"", "A\\u200b"),
             {"warning invisible 2:42 \"eAction\" has invisible characters"});
    shortcut("invisible characters of other planes", row("\"Function\", \"Up\"", "A\xF3\xA0\x80\x81"),
             {"warning invisible 2:42 \"eAction\" has invisible characters"});
    shortcut("a member twice", row("\"Function\", \"Up\"", "A", "Idle", ", \"eAction\": \"B\""),
             {"warning duplicate 2:102 \"eAction\" is there twice, and the last one counts"});
}

void CheckTest::findings()
{
    QFETCH(QByteArray, longPresses);
    QFETCH(QByteArray, combinations);
    QFETCH(QByteArray, shortcuts);
    QFETCH(QStringList, expected);
    QCOMPARE(found(ListTexts::withRows(longPresses, combinations, shortcuts)), expected);
}

void CheckTest::faultsOfAFile_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");

    QTest::newRow("empty") << QByteArray(" \n") << "error syntax 1:1 the file is empty";
    QTest::newRow("not JSON") << QByteArray("{\n  \"LongKeys\": [}\n")
                              << "error syntax 2:16 the file is not JSON: a value is missing before \"}\"";
    QTest::newRow("not an object")
        << QByteArray("[]") << "error section 1:1 the file is not an object with the list \"LongKeys\"";
    QTest::newRow("without the section")
        << QByteArray("{\"a\": 1}")
        << "error section 1:1 the file has no list \"LongKeys\", so it has no rows";
    QTest::newRow("misspelt section")
        << QByteArray("{\"LongKey\": []}")
        << "error section 1:1 the file has no list \"LongKeys\", so it has no rows; is \"LongKey\" misspelt?";
    QTest::newRow("the section is not a list")
        << QByteArray("{\"LongKeys\": 5}")
        << "error section 1:14 \"LongKeys\" is not a list, so it has no rows";
    QTest::newRow("the section twice")
        << QByteArray("{\"LongKeys\": 5, \"LongKeys\": []}")
        << "warning duplicate 1:17 \"LongKeys\" is there twice, and the last one counts";
    QTest::newRow("a member twice among many")
        << QByteArray(
               "{\"LongKeys\": [],\"b\":1,\"c\":1,\"d\":1,\"e\":1,\"f\":1,\"g\":1,\"h\":1,\"i\":1,\"j\":1,"
               "\"k\":1,\"l\":1,\"m\":1,\"n\":1,\"o\":1,\"p\":1,\"b\":2}")
        << "warning duplicate 1:107 \"b\" is there twice among so many members that either may count";
    QTest::newRow("over the limit")
        << QByteArray(KeyListFile::maxSize + 1, ' ')
        << "error too-large 1:1 the file is over the limit of 1048576 bytes, and the daemon reads none of it";
}

void CheckTest::faultsOfAFile()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    QCOMPARE(found(ListTexts::withText(List::LongPresses, text)), QStringList(expected));
}

void CheckTest::whatIsMissingInJsonIsNamed_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("expected");

    const auto fault = [](const char* name, const QByteArray& text, const char* expected) {
        QTest::newRow(name) << text << QString::fromUtf8(expected);
    };
    fault("a word", "half a sentence", "1:1 a value is missing before \"h\"");
    fault("a list that does not end", "{ \"LongKeys\": [", "1:16 a value is missing at the end");
    fault("an object that does not end", "{\"a\": 1\n", "2:1 a comma or } is missing at the end");
    fault("a missing comma", "{\n  \"a\": 1\n  \"b\": 2\n}", "3:3 a comma or } is missing before a quote");
    fault("a comma too many", "{\n  \"a\": [1, 2,]\n}", "2:14 a value is missing before \"]\"");
    fault("a comma after the last member", "{\"a\": 1,}",
          "1:9 a name in double quotes is missing before \"}\"");
    fault("a missing colon", "{\"a\" 1}", "1:6 a colon is missing before \"1\"");
    fault("a name without quotes", "{a: 1}", "1:2 a name in double quotes is missing before \"a\"");
    fault("a quote that is not closed", "[\"Up, 1]\n",
          "1:2 the quote that begins here is not closed in its line");
    fault("a quote that ends in an escape", "[\"Up\\",
          "1:2 the quote that begins here is not closed in its line");
    fault("a number that is not one", "[01]", "1:2 a value is missing before \"0\"");
    fault("a comment", "{} // \xC3\xA4", "1:4 the text should end before \"/\"");
    fault("a character of several bytes", "[\xF0\x9F\x98\x80]",
          "1:2 a value is missing before \"\xF0\x9F\x98\x80\"");
    fault("more after the end", "\xEF\xBB\xBF{}\n}", "2:1 the text should end before \"}\"");
    fault("a million lists", QByteArray(1'000'000, '['), "1:1000001 a value is missing at the end");
    // Their grammar is right, and Qt's reader says why it rejects them.
    fault("too many lists in one another", QByteArray(2000, '[') + QByteArray(2000, ']'),
          "1:1026 too deeply nested document");
}

void CheckTest::whatIsMissingInJsonIsNamed()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, expected);
    const int place = expected.indexOf(' ');
    QCOMPARE(found(ListTexts::withText(List::LongPresses, text)),
             QStringList("error syntax " + expected.left(place) +
                         " the file is not JSON: " + expected.mid(place + 1)));
}

/// Holding Back and Ok, Feed with Ok and Help with Back do nothing in Idle.
void CheckTest::installedListsHaveOnlySilentGestures()
{
    const ListSources sources = ListSources::read({QStringLiteral(KEY_LISTS)});
    QCOMPARE(sources.fault, QString());
    QStringList messages;
    const CheckResult result = check(sources, {});
    for (const Finding& finding : result.findings) {
        messages.append(finding.id + QLatin1Char(' ') + finding.message);
    }
    QVERIFY(result.isProved);
    QCOMPARE(
        messages,
        QStringList(
            {"silent in Idle, holding Back for 2.25 s (CancelJob) causes neither speech nor an action",
             "silent in Idle, holding Ok for 1.25 s (AcknowledgeError) causes neither speech nor an action",
             "silent in Idle, holding Feed and pressing Ok (LoadPaper) causes neither speech nor an action",
             "silent in Idle, holding Help and pressing Back (UpdateStatus) causes neither speech nor an "
             "action"}));
}

void CheckTest::optionsOfAPerson_data()
{
    QTest::addColumn<int>("fingers");
    QTest::addColumn<int>("pace");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("one finger")
        << 1 << 0
        << QStringList("warning two-hands 2:11 \"A\" of row 1 cannot be reached with one finger in Idle");
    QTest::newRow("two fingers") << 2 << 0 << QStringList();
    QTest::newRow("a slow person") << 2 << 1000 << QStringList();
}

void CheckTest::optionsOfAPerson()
{
    QFETCH(int, fingers);
    QFETCH(int, pace);
    QFETCH(QStringList, expected);
    CheckOptions options;
    options.fingers = fingers;
    options.pace = std::chrono::milliseconds(pace);
    QCOMPARE(found(ListTexts::withRows({}, {}, row("\"Function\", \"Up\"", "A")), options), expected);
}

/// A combination must be quicker than the time after which all keys are forgotten.
void CheckTest::aCombinationCanBeTooSlow()
{
    CheckOptions options;
    options.pace = std::chrono::milliseconds(1750);
    QCOMPARE(
        found(ListTexts::withRows({}, row("\"Help\", \"Feed\"", "A"), {}), options),
        QStringList("warning pace 2:11 \"A\" of row 1 cannot be reached with 1750 ms between two movements"));
}

void CheckTest::manyRowsEnd_data()
{
    QTest::addColumn<int>("list");
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<QByteArray>("firstRow");
    QTest::addColumn<QString>("id");

    const auto number = [](List list) { return static_cast<int>(list); };
    QTest::newRow("long presses") << number(List::LongPresses) << QByteArray("\"Help\"") << QByteArray()
                                  << "hidden";
    QTest::newRow("pairs") << number(List::Combinations) << QByteArray("\"Help\", \"Feed\"") << QByteArray()
                           << "same-keys";
    QTest::newRow("hidden pairs") << number(List::Combinations) << QByteArray("\"Help\", \"Feed\"")
                                  << row("\"Function\", \"Help\", \"One\"", "A") + ","
                                  << "hidden";
    QTest::newRow("sequences") << number(List::Combinations) << QByteArray("\"Help\", \"Feed\", \"Ok\"")
                               << QByteArray() << "hidden";
    QTest::newRow("shortcuts") << number(List::Shortcuts) << QByteArray("\"Help\", \"Feed\"") << QByteArray()
                               << "hidden";
}

/// All rows have the same keys and are in one line.
void CheckTest::manyRowsEnd()
{
    QFETCH(int, list);
    QFETCH(QByteArray, keys);
    QFETCH(QByteArray, firstRow);
    QFETCH(QString, id);
    constexpr int count = 8000;
    const QByteArray more = list == static_cast<int>(List::LongPresses) ? ", \"timeout\": 2" : "";
    std::array<QByteArray, 3> texts;
    QByteArray& text = texts[static_cast<size_t>(list)];
    text = firstRow;
    for (int i = 0; i < count; ++i) {
        text += (i > 0 ? "," : "") + row(keys, QByteArray::number(i), "Idle", more).trimmed();
    }
    const ListSources sources = ListTexts::withRows(texts[0], texts[1], texts[2]);
    const CheckResult result = check(sources, {});
    const auto isMeant = [&](const Finding& finding) { return finding.id == id; };
    QVERIFY(std::count_if(result.findings.begin(), result.findings.end(), isMeant) >= count - 1);
    QString report;
    for (const Finding& finding : result.findings) {
        report += FindingText(sources, false).describe(finding);
    }
    QVERIFY(report.count('\n') > 4 * count);
}

/// A row of a mebibyte.
void CheckTest::manyMembersEnd()
{
    constexpr int count = 100'000;
    QByteArray members;
    for (int i = 0; i < count; ++i) {
        members += ",\"a\":1";
    }
    const ListSources sources = ListTexts::withRows({}, row("\"Help\", \"Feed\"", "A", "Idle", members), {});
    const CheckResult result = check(sources, {});
    QVERIFY(result.findings.size() >= count);
}

void CheckTest::aSearchThatEndsAtItsLimitProvesNothing()
{
    CheckOptions options;
    options.limits = {10, 10};
    const ListSources sources = ListTexts::withRows({}, row("\"Help\", \"Feed\"", "A"), {});
    QCOMPARE(
        found(sources, options),
        QStringList("warning not-proved 2:11 not proved: the search for \"A\" in Idle ended at its limit"));
    const CheckResult result = check(sources, options);
    QVERIFY(!result.isProved);
    QCOMPARE(result.provedRows, 0);
    QVERIFY(FindingText(sources, false).summary(result).contains("Not all is proved"));
}

void CheckTest::summaryOfWhatIsProved()
{
    const auto summaryOf = [](const QByteArray& rows) {
        const ListSources sources = ListTexts::withRows({}, rows, {});
        return FindingText(sources, false)
            .summary(check(sources, {}))
            .remove(QRegularExpression("[\\d,]+ s"));
    };
    const QByteArray good = row("\"Help\", \"Feed\"", "A");
    QCOMPARE(summaryOf(good),
             QString("1 row: 0 errors, 0 warnings, 0 notes. Proved by a search of ituations in teps.\n"));
    QCOMPARE(
        summaryOf(good + "," + row("\"Help\", \"Fed\"", "B")),
        QString("2 rows: 1 error, 0 warnings, 0 notes. Proved for 1 row by a search of ituations in teps.\n"
                "Not searched in modifierKeyList.json: row 2 (unknown-key).\n"));
    QCOMPARE(summaryOf(good + "5"),
             QString("0 rows: 1 error, 0 warnings, 0 notes. Nothing was proved.\n"
                     "Not searched: modifierKeyList.json, which has no readable list.\n"));
}

/// Of many rows that were not searched, the first ones are named.
void CheckTest::summaryOfManyRows()
{
    QByteArray rows = row("\"Help\", \"Fed\"", "A");
    for (int i = 1; i < 13; ++i) {
        rows += "," + row("\"Help\", \"Fed\"", "A");
    }
    const ListSources sources = ListTexts::withRows({}, rows, {});
    const QString summary = FindingText(sources, false).summary(check(sources, {}));
    QVERIFY2(summary.endsWith(", row 9 (unknown-key), row 10 (unknown-key) and 3 others.\n"),
             qPrintable(summary));
}

/// Each place is shown with its own file.
void CheckTest::textOfAFindingInTwoFiles()
{
    const ListSources sources =
        ListTexts::withRows({}, row("\"Ok\", \"Feed\"", "A"), row("\"Feed\", \"Ok\"", "B"));
    const CheckResult result = check(sources, {});
    QCOMPARE(result.findings.size(), 1);
    QCOMPARE(result.findings.first().id, QString("also"));
    const QStringList lines = FindingText(sources, false).describe(result.findings.first()).split('\n');
    QCOMPARE(lines.value(1), QString("  --> shortcutKeyList.json:2:1"));
    QVERIFY(lines.value(3).startsWith(" 2 | { \"keys\": [\"Feed\", \"Ok\"]"));
    QCOMPARE(lines.value(5), QString("  ::: modifierKeyList.json:2:1"));
    QVERIFY(lines.value(7).startsWith(" 2 | { \"keys\": [\"Ok\", \"Feed\"]"));
    QVERIFY(lines.value(8).endsWith("-- the other action"));
}

/// The form in which compilers report: a place, a level, a sentence and an id.
void CheckTest::lineOfAFinding()
{
    const ListSources sources = ListTexts::withRows(
        {}, row("\"Function\", \"Help\", \"One\"", "A") + "," + row("\"Help\", \"Feed\"", "B\\u001b"), {});
    const CheckResult result = check(sources, {});
    const auto isHidden = [](const Finding& finding) { return finding.id == "hidden"; };
    const auto hidden = std::find_if(result.findings.begin(), result.findings.end(), isHidden);
    QVERIFY(hidden != result.findings.end());
    QCOMPARE(FindingLines::of(*hidden, sources).split('\n'),
             QStringList({"modifierKeyList.json:3:12: error: no keys announce \"B\\u001b\" [hidden]",
                          "modifierKeyList.json:2:11: note: row 1 hides row 2",
                          "modifierKeyList.json:3:12: help: move row 1 to the end of the list: then row 2 "
                          "works, and all that work now still do (--fix)",
                          ""}));
}

void CheckTest::lineOfAFindingWithARemark()
{
    const ListSources sources = ListTexts::withRows({}, row("\"Ok\", \"Feed\"", "A", "Print"), {});
    const CheckResult result = check(sources, {});
    QCOMPARE(result.findings.size(), 1);
    QCOMPARE(
        FindingLines::of(result.findings.first(), sources),
        QString("modifierKeyList.json:2:90: error: no keys announce \"A\" in Print unless the state changes "
                "between the keys or the keyboard test runs: no combination can begin here: each key is "
                "announced at once and forgotten [state-change]\n"));
}

/// Of a long line, the part around the place is shown.
void CheckTest::textOfAFindingInALongLine()
{
    const QByteArray action(5000, 'x');
    const QByteArray key = "\xF0\x9F\x94\x91";
    const ListSources sources = ListTexts::withRows({},
                                                    row("\"Help\", \"Feed\"", action).trimmed() + "," +
                                                        row("\"Help\", \"" + key.repeated(200) + "\"", "B"),
                                                    {});
    const CheckResult result = check(sources, {});
    QCOMPARE(result.findings.size(), 1);
    const QStringList lines = FindingText(sources, false).describe(result.findings.first()).split('\n');
    QCOMPARE(lines.value(3).toUcs4().size(), 5 + 100);
    QVERIFY2(lines.value(3).startsWith(" 2 | ..."), qPrintable(lines.value(3)));
    QVERIFY2(lines.value(3).endsWith(QString::fromUtf8(key) + "..."), qPrintable(lines.value(3)));
    QCOMPARE(lines.value(4), "   | " + QString(43, ' ') + QString(57, '^'));
}

void CheckTest::silentGesturesCanBeAllowed()
{
    const ListSources sources = ListTexts::withRows({}, {}, row("\"Feed\", \"Ok\"", "A", "PrintOff"));
    const CheckResult result = check(sources, {});
    QCOMPARE(result.findings.size(), 1);
    QCOMPARE(result.findings.first().help,
             QString("accept the silence with --allow silent:A, or choose other keys for the row"));
    CheckOptions options;
    options.allowed = QStringList("silent:A");
    QCOMPARE(found(sources, options), QStringList());
}

void CheckTest::joinedStatesHaveHelp()
{
    const ListSources sources = ListTexts::withRows({}, {}, row("\"Feed\", \"Ok\"", "A", "Idle Print"));
    const CheckResult result = check(sources, {});
    QCOMPARE(result.findings.size(), 1);
    QCOMPARE(result.findings.first().help,
             QString("name one state; for another state, write a row with other keys, or a long press"));
}

void CheckTest::rowsWithTheSameKeysHaveHelp_data()
{
    QTest::addColumn<QByteArray>("longPresses");
    QTest::addColumn<QByteArray>("shortcuts");
    QTest::addColumn<QString>("help");
    QTest::newRow("long presses for two states")
        << held("2") + "," + held("2", "Print") << QByteArray()
        << "join the states of both in row 2 with a vertical bar, and delete row 1";
    QTest::newRow("long presses with two actions")
        << held("2") + "," + row("\"Help\"", "B", "Print", ", \"timeout\": 2") << QByteArray()
        << "of several long presses with a key, only the last one counts: choose another key for one of them";
    QTest::newRow("shortcuts for two states")
        << QByteArray() << row("\"Function\", \"Up\"", "A") + "," + row("\"Function\", \"Up\"", "A", "Update")
        << "of several shortcuts with the same keys, only the first one counts, in its one state: choose "
           "other "
           "keys for one of them";
}

void CheckTest::rowsWithTheSameKeysHaveHelp()
{
    QFETCH(QByteArray, longPresses);
    QFETCH(QByteArray, shortcuts);
    QFETCH(QString, help);
    const CheckResult result = check(ListTexts::withRows(longPresses, {}, shortcuts), {});
    const auto isHidden = [](const Finding& finding) { return finding.id == "hidden"; };
    const auto hidden = std::find_if(result.findings.begin(), result.findings.end(), isHidden);
    QVERIFY(hidden != result.findings.end());
    QCOMPARE(hidden->help, help);
}

void CheckTest::textOfAFinding()
{
    const ListSources sources = ListTexts::withRows(
        {}, row("\"Function\", \"Help\", \"One\"", "A") + "," + row("\"Help\", \"Feed\"", "B"), {});
    const CheckResult result = check(sources, {});
    QCOMPARE(result.findings.size(), 1);
    const QStringList lines = FindingText(sources, false).describe(result.findings.first()).split('\n');
    QCOMPARE(lines.value(0), QStringLiteral("error[hidden]: no keys announce \"B\""));
    QCOMPARE(lines.value(1), QStringLiteral("  --> modifierKeyList.json:3:12"));
    QCOMPARE(lines.value(2), QStringLiteral("   |"));
    QVERIFY(
        lines.value(3).startsWith(" 2 | { \"keys\": [\"Function\", \"Help\", \"One\"], \"eAction\": \"A\""));
    QCOMPARE(lines.value(4), QStringLiteral("   |           --------------------------- row 1 hides row 2"));
    QVERIFY(lines.value(5).startsWith(" 3 | ,{ \"keys\": [\"Help\", \"Feed\"]"));
    QCOMPARE(lines.value(6), QStringLiteral("   |            ^^^^^^^^^^^^^^^^"));
    QVERIFY(lines.value(7).startsWith("   = proved: any input; "));
    QVERIFY2(lines.value(7).endsWith("; no keys announce this row"), qPrintable(lines.value(7)));
    QCOMPARE(lines.value(8),
             QStringLiteral("   = help: move row 1 to the end of the list: then row 2 works, and all "
                            "that work now still do (--fix)"));
}

/// What a file contains must not act on a terminal.
void CheckTest::namesAreNeverPrintedRaw()
{
    const ListSources sources =
        ListTexts::withRows({}, row("\"He\\u001b[31mlp\", \"\x1b[2J\"", "A\\u202e"), {});
    const CheckResult result = check(sources, {});
    QVERIFY(result.findings.size() >= 2);
    for (const Finding& finding : result.findings) {
        const QString text = FindingText(sources, false).describe(finding);
        for (const QChar c : text) {
            QVERIFY2(c == '\n' || c.isPrint(), qPrintable(text));
        }
    }
}

QTEST_GUILESS_MAIN(CheckTest)
#include "CheckTest.moc"

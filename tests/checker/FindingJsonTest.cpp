// SPDX-License-Identifier: MIT
#include "checker/FindingJson.h"
#include "tests/checker/FindingSamples.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QtTest>

using namespace checker;

namespace {

QJsonObject parsed(const QByteArray& text)
{
    QJsonParseError error{};
    const QJsonObject object = QJsonDocument::fromJson(text, &error).object();
    return error.error == QJsonParseError::NoError ? object : QJsonObject();
}

QJsonObject sampleFinding(int index)
{
    const QJsonObject all = parsed(FindingJson::of(FindingSamples::result(), FindingSamples::sources()));
    return all.value("findings").toArray().at(index).toObject();
}

QJsonObject object(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

/// Checks the JSON format of findings, which other programs rely on.
class FindingJsonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDocumentNamesItsVersion();
    void aFindingWithoutExtras();
    void aFindingWithAllParts();
    void anIncompleteSearchIsNotProved();
    void rowsThatWereNotSearched();
};

void FindingJsonTest::theDocumentNamesItsVersion()
{
    const QJsonObject all = parsed(FindingJson::of({}, {}));
    const QJsonObject expected = object(R"({ "version": 1, "findings": [], "proved": true, "rows": 0,
        "provedRows": 0, "unsearched": [], "situations": 0, "steps": 0, "tool": { "name": "keyboard-handler-keys", "version": ")" PROJECT_VERSION
                                        R"(" } })");
    QVERIFY(!expected.isEmpty());
    QCOMPARE(all, expected);
}

void FindingJsonTest::aFindingWithoutExtras()
{
    QCOMPARE(sampleFinding(0), object(R"({
        "id": "section", "level": "warning", "message": "is \"LongKey\" misspelt?", "file": "/etc/long keys.json",
        "line": 1, "column": 1, "endLine": 1, "endColumn": 1, "remark": "", "row": null, "related": [], "proof": null,
        "help": "", "witness": "" })"));
}

void FindingJsonTest::aFindingWithAllParts()
{
    const QJsonObject finding = sampleFinding(1);
    QCOMPARE(finding.value("message").toString(),
             QString("no keys announce \"{0}\x1b") + QChar(0xD800) + "\"");
    QCOMPARE(finding.value("file").toString(), QString::fromUtf8("my lists/ü:100%.json"));
    // The key is one character, but two units of UTF-16 and four bytes.
    QCOMPARE(finding.value("line").toInt(), 2);
    QCOMPARE(finding.value("column").toInt(), 9);
    QCOMPARE(finding.value("endColumn").toInt(), 10);
    QCOMPARE(finding.value("remark").toString(), QString("row 2"));
    QCOMPARE(finding.value("row").toInt(), 2);
    const QJsonObject related = finding.value("related").toArray().first().toObject();
    QCOMPARE(related, object(R"({ "file": "my lists/ü:100%.json", "line": 2, "column": 3, "endLine": 2,
        "endColumn": 6, "remark": "row 1" })"));
    QCOMPARE(finding.value("proof").toObject(), object(R"({ "model": "Orvane", "environment":
        "a person with 2 fingers", "situations": 5000000000, "steps": 2, "complete": true })"));
    QCOMPARE(finding.value("help").toString(), QString("move row 1"));
    QCOMPARE(finding.value("witness").toString(), QString("state Idle\ntap Help\n"));
}

void FindingJsonTest::anIncompleteSearchIsNotProved()
{
    CheckResult result;
    result.isProved = false;
    QCOMPARE(parsed(FindingJson::of(result, {})).value("proved"), QJsonValue(false));
}

/// A row with a fault, and all rows of a file that has no list.
void FindingJsonTest::rowsThatWereNotSearched()
{
    using model::List;
    const ListSources sources = FindingSamples::sources();
    CheckResult result;
    result.rows = 3;
    result.provedRows = 2;
    result.unsearched = {{{List::Combinations, 1}, "unknown-key"}};
    QJsonObject all = parsed(FindingJson::of(result, sources));
    QCOMPARE(all.value("proved"), QJsonValue(false));
    QCOMPARE(all.value("rows"), QJsonValue(3));
    QCOMPARE(all.value("provedRows"), QJsonValue(2));
    QCOMPARE(QJsonObject({{"a", all.value("unsearched")}}),
             object(R"({ "a": [{ "file": "my lists/ü:100%.json", "row": 2, "id": "unknown-key" }] })"));
    result.unsearched.clear();
    result.provedRows = 3;
    QCOMPARE(parsed(FindingJson::of(result, sources)).value("proved"), QJsonValue(true));
    result.unreadable = {List::LongPresses};
    all = parsed(FindingJson::of(result, sources));
    QCOMPARE(all.value("proved"), QJsonValue(false));
    QCOMPARE(QJsonObject({{"a", all.value("unsearched")}}),
             object(R"({ "a": [{ "file": "/etc/long keys.json", "row": null, "id": "" }] })"));
}

QTEST_GUILESS_MAIN(FindingJsonTest)
#include "FindingJsonTest.moc"

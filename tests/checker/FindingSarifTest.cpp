// SPDX-License-Identifier: MIT
#include "checker/FindingSarif.h"
#include "checker/Explanations.h"
#include "tests/checker/FindingSamples.h"
#include "tests/checker/JsonSchema.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>
#include <QtTest>

using namespace checker;

namespace {

QByteArray sample()
{
    return FindingSarif::of(FindingSamples::result(), FindingSamples::sources());
}

QJsonObject runOf(const QByteArray& document)
{
    return QJsonDocument::fromJson(document).object().value("runs").toArray().first().toObject();
}

QJsonObject sampleResult(int index)
{
    return runOf(sample()).value("results").toArray().at(index).toObject();
}

QJsonObject object(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

/// The sample with one member of its run changed.
QByteArray sampleWith(const QString& member, const QJsonValue& value)
{
    QJsonObject run = runOf(sample());
    run.insert(member, value);
    QJsonObject document = QJsonDocument::fromJson(sample()).object();
    document.insert("runs", QJsonArray{run});
    return QJsonDocument(document).toJson();
}

} // namespace

/// Checks the SARIF format of findings against its schema, and what the schema does not say.
class FindingSarifTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentsMatchTheSchema_data();
    void documentsMatchTheSchema();
    void theSchemaRejectsFaults_data();
    void theSchemaRejectsFaults();
    void filesHaveUris_data();
    void filesHaveUris();
    void placesAreInCodePoints();
    void otherPlacesAreRelatedOnce();
    void messagesHaveNoPlaceholders();
    void resultsNameTheirRules();
    void anIncompleteSearchIsReported();
};

void FindingSarifTest::documentsMatchTheSchema_data()
{
    QTest::addColumn<QByteArray>("document");
    CheckResult incomplete;
    incomplete.isProved = false;
    QTest::newRow("no findings") << FindingSarif::of({}, {});
    QTest::newRow("findings") << sample();
    QTest::newRow("incomplete") << FindingSarif::of(incomplete, FindingSamples::sources());
}

void FindingSarifTest::documentsMatchTheSchema()
{
    QFETCH(QByteArray, document);
    QCOMPARE(JsonSchema::faultsOf(document, JsonSchema::sarif()), QString());
}

void FindingSarifTest::theSchemaRejectsFaults_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("column kind") << sampleWith("columnKind", "codePoints");
    QTest::newRow("tool") << sampleWith("tool", QJsonObject());
    QTest::newRow("member") << sampleWith("findings", QJsonArray());
    const QJsonObject blank{{"location", QJsonObject{{"uri", "my lists"}}}};
    QTest::newRow("URI") << sampleWith("artifacts", QJsonArray{blank});
}

void FindingSarifTest::theSchemaRejectsFaults()
{
    QFETCH(QByteArray, document);
    QVERIFY(!JsonSchema::faultsOf(document, JsonSchema::sarif()).isEmpty());
}

void FindingSarifTest::filesHaveUris_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("uri");
    QTest::newRow("relative") << "lists/longKeyList.json"
                              << "lists/longKeyList.json";
    QTest::newRow("parent") << "../longKeyList.json"
                            << "../longKeyList.json";
    QTest::newRow("absolute") << "/etc/longKeyList.json"
                              << "file:///etc/longKeyList.json";
    QTest::newRow("blank") << "my lists/a b.json"
                           << "my%20lists/a%20b.json";
    QTest::newRow("percent") << "100%25.json"
                             << "100%2525.json";
    QTest::newRow("scheme") << "mailto:a"
                            << "mailto%3Aa";
    QTest::newRow("query and fragment") << "a?b#c"
                                        << "a%3Fb%23c";
    QTest::newRow("letters") << QString::fromUtf8("ü\xF0\x9F\x94\x91") << "%C3%BC%F0%9F%94%91";
    QTest::newRow("control character") << "a\x1b"
                                       << "a%1B";
}

void FindingSarifTest::filesHaveUris()
{
    QFETCH(QString, name);
    QFETCH(QString, uri);
    QCOMPARE(FindingSarif::uriOf(name), uri);
    // A reader finds the same file.
    const QUrl base(QStringLiteral("file:///base/"));
    const QString path = name.startsWith('/') ? name : QDir::cleanPath("/base/" + name);
    QCOMPARE(base.resolved(QUrl(uri, QUrl::StrictMode)).path(QUrl::FullyDecoded), path);
}

void FindingSarifTest::placesAreInCodePoints()
{
    QCOMPARE(runOf(sample()).value("columnKind").toString(), QString("unicodeCodePoints"));
    const QJsonArray locations = sampleResult(1).value("locations").toArray();
    QCOMPARE(locations.size(), 1);
    const QJsonObject expected = object(R"({ "message": { "text": "row 2" }, "physicalLocation": {
        "artifactLocation": { "uri": "my%20lists/%C3%BC%3A100%25.json", "index": 1 },
        "region": { "startLine": 2, "startColumn": 9, "endLine": 2, "endColumn": 10 } } })");
    QCOMPARE(locations.first().toObject(), expected);
}

void FindingSarifTest::otherPlacesAreRelatedOnce()
{
    const QJsonArray related = sampleResult(1).value("relatedLocations").toArray();
    QCOMPARE(related.size(), 1);
    const QJsonObject expected = object(R"({ "text": "row 1" })");
    QCOMPARE(related.first().toObject().value("message").toObject(), expected);
}

void FindingSarifTest::messagesHaveNoPlaceholders()
{
    const QString text = sampleResult(1).value("message").toObject().value("text").toString();
    QCOMPARE(text, QString("no keys announce \"{{0}}\x1b") + QChar(0xD800) + "\".\nHelp: move row 1.");
    const QJsonObject expected = object(R"({ "text": "is \"LongKey\" misspelt?" })");
    QCOMPARE(sampleResult(0).value("message").toObject(), expected);
}

void FindingSarifTest::resultsNameTheirRules()
{
    const QJsonObject driver = runOf(sample()).value("tool").toObject().value("driver").toObject();
    const QJsonArray rules = driver.value("rules").toArray();
    QCOMPARE(rules.size(), Explanations::all().size());
    for (const int index : {0, 1}) {
        const QJsonObject result = sampleResult(index);
        const QJsonObject rule = rules.at(result.value("ruleIndex").toInt()).toObject();
        QCOMPARE(rule.value("id"), result.value("ruleId"));
    }
    QCOMPARE(sampleResult(0).value("level").toString(), QString("warning"));
    QCOMPARE(sampleResult(1).value("level").toString(), QString("error"));
}

void FindingSarifTest::anIncompleteSearchIsReported()
{
    const auto notifications = [](bool isProved) {
        CheckResult result;
        result.isProved = isProved;
        const QJsonArray invocations = runOf(FindingSarif::of(result, {})).value("invocations").toArray();
        return invocations.first().toObject().value("toolExecutionNotifications").toArray().size();
    };
    QCOMPARE(notifications(true), 0);
    QCOMPARE(notifications(false), 1);
}

QTEST_GUILESS_MAIN(FindingSarifTest)
#include "FindingSarifTest.moc"

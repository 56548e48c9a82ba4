// SPDX-License-Identifier: MIT
#include "checker/FindingSarif.h"

#include "checker/Explanations.h"
#include "checker/FindingJson.h"
#include "checker/FindingText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

namespace checker {

using model::List;

namespace {

/// A message object. The format reserves braces for placeholders, so those of names are doubled.
QJsonObject messageOf(QString text)
{
    text.replace(QLatin1Char('{'), QStringLiteral("{{")).replace(QLatin1Char('}'), QStringLiteral("}}"));
    return {{QStringLiteral("text"), text}};
}

QString sentenceOf(const QString& text)
{
    return text.endsWith(QLatin1Char('.')) || text.endsWith(QLatin1Char('?')) ? text
                                                                              : text + QLatin1Char('.');
}

QJsonObject ruleOf(const Explanation& explanation)
{
    return {{QStringLiteral("id"), explanation.id},
            {QStringLiteral("shortDescription"), messageOf(sentenceOf(explanation.title))},
            {QStringLiteral("fullDescription"), messageOf(explanation.text)},
            {QStringLiteral("help"), messageOf(explanation.text)},
            {QStringLiteral("defaultConfiguration"),
             QJsonObject{{QStringLiteral("level"), nameOf(explanation.level)}}}};
}

QJsonArray rules()
{
    QJsonArray rules;
    for (const Explanation& explanation : Explanations::all()) {
        rules.append(ruleOf(explanation));
    }
    return rules;
}

/// Builds the results of one run.
class SarifResults
{
public:
    explicit SarifResults(const ListSources& sources) : m_sources(sources) {}

    QJsonArray artifacts() const;
    QJsonObject of(const Finding& finding) const;

private:
    QJsonObject artifactLocation(List list) const;
    QJsonObject location(const Place& place) const;
    QJsonObject properties(const Finding& finding) const;

    const ListSources& m_sources;
};

QJsonArray SarifResults::artifacts() const
{
    QJsonArray artifacts;
    for (const List list : m_sources.found) {
        const SourceFile& file = m_sources.file(list);
        artifacts.append(QJsonObject{
            {QStringLiteral("location"),
             QJsonObject{{QStringLiteral("uri"), FindingSarif::uriOf(file.name())}}},
            {QStringLiteral("length"), file.text().size()},
            {QStringLiteral("mimeType"), QStringLiteral("application/json")},
            {QStringLiteral("roles"), QJsonArray{QStringLiteral("analysisTarget")}},
        });
    }
    return artifacts;
}

QJsonObject SarifResults::artifactLocation(List list) const
{
    QJsonObject location{{QStringLiteral("uri"), FindingSarif::uriOf(m_sources.file(list).name())}};
    const int index = m_sources.found.indexOf(list);
    if (index != -1) {
        location.insert(QStringLiteral("index"), index);
    }
    return location;
}

QJsonObject SarifResults::location(const Place& place) const
{
    const SourceFile& file = m_sources.file(place.list);
    const Position begin = file.position(place.range.begin);
    const Position end = file.position(place.range.end);
    const QJsonObject region{{QStringLiteral("startLine"), begin.line},
                             {QStringLiteral("startColumn"), begin.column},
                             {QStringLiteral("endLine"), end.line},
                             {QStringLiteral("endColumn"), end.column}};
    const QJsonObject physical{{QStringLiteral("artifactLocation"), artifactLocation(place.list)},
                               {QStringLiteral("region"), region}};
    QJsonObject location{{QStringLiteral("physicalLocation"), physical}};
    if (!place.remark.isEmpty()) {
        location.insert(QStringLiteral("message"), messageOf(place.remark));
    }
    return location;
}

QJsonObject SarifResults::properties(const Finding& finding) const
{
    QJsonObject properties;
    if (finding.proof) {
        properties.insert(QStringLiteral("proof"), FindingJson::of(*finding.proof));
    }
    if (!finding.witness.isEmpty()) {
        properties.insert(QStringLiteral("witness"), finding.witness);
    }
    return properties;
}

QJsonObject SarifResults::of(const Finding& finding) const
{
    const QString help =
        finding.help.isEmpty() ? QString() : QStringLiteral("\nHelp: ") + sentenceOf(finding.help);
    QJsonArray related;
    for (const Place& place : finding.related) {
        // The format forbids equal ones.
        if (!related.contains(location(place))) {
            related.append(location(place));
        }
    }
    QJsonObject result{{QStringLiteral("ruleId"), finding.id},
                       {QStringLiteral("level"), nameOf(finding.level)},
                       {QStringLiteral("message"), messageOf(sentenceOf(finding.message) + help)},
                       {QStringLiteral("locations"), QJsonArray{location(finding.place)}},
                       {QStringLiteral("relatedLocations"), related},
                       {QStringLiteral("properties"), properties(finding)}};
    if (const Explanation* explanation = Explanations::find(finding.id)) {
        result.insert(QStringLiteral("ruleIndex"),
                      static_cast<int>(explanation - Explanations::all().begin()));
    }
    return result;
}

/// Says that a search reached its limit, which no single result shows.
QJsonObject invocationOf(const CheckResult& result)
{
    QJsonObject invocation{{QStringLiteral("executionSuccessful"), true}};
    if (!result.isProved) {
        const QString text =
            QStringLiteral("A search reached its limit. What it has not found is not proved.");
        invocation.insert(QStringLiteral("toolExecutionNotifications"),
                          QJsonArray{QJsonObject{{QStringLiteral("level"), QStringLiteral("warning")},
                                                 {QStringLiteral("message"), messageOf(text)}}});
    }
    return invocation;
}

} // namespace

QByteArray FindingSarif::of(const CheckResult& result, const ListSources& sources)
{
    const SarifResults results(sources);
    QJsonArray findings;
    for (const Finding& finding : result.findings) {
        findings.append(results.of(finding));
    }
    const QJsonObject driver{{QStringLiteral("name"), QStringLiteral("keyboard-handler-keys")},
                             {QStringLiteral("version"), QStringLiteral(KEYBOARD_HANDLER_VERSION)},
                             {QStringLiteral("rules"), rules()}};
    const QJsonObject run{{QStringLiteral("tool"), QJsonObject{{QStringLiteral("driver"), driver}}},
                          {QStringLiteral("columnKind"), QStringLiteral("unicodeCodePoints")},
                          {QStringLiteral("invocations"), QJsonArray{invocationOf(result)}},
                          {QStringLiteral("artifacts"), results.artifacts()},
                          {QStringLiteral("results"), findings}};
    const QString schema = QStringLiteral(
        "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json");
    const QJsonObject document{{QStringLiteral("$schema"), schema},
                               {QStringLiteral("version"), QStringLiteral("2.1.0")},
                               {QStringLiteral("runs"), QJsonArray{run}}};
    return QJsonDocument(document).toJson();
}

QString FindingSarif::uriOf(const QString& fileName)
{
    // Encodes colons as well, because one in the first folder of a relative name would end a scheme.
    const QString path = QString::fromLatin1(QUrl::toPercentEncoding(fileName, "/"));
    return path.startsWith(QLatin1Char('/')) ? QStringLiteral("file://") + path : path;
}

} // namespace checker

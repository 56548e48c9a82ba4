// SPDX-License-Identifier: MIT
#include "checker/FindingJson.h"

#include "checker/FindingText.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace checker {

namespace {

QJsonObject objectOf(const Place& place, const ListSources& sources)
{
    const SourceFile& file = sources.file(place.list);
    const Position begin = file.position(place.range.begin);
    const Position end = file.position(place.range.end);
    return {{QStringLiteral("file"), file.name()},
            {QStringLiteral("line"), begin.line},
            {QStringLiteral("column"), begin.column},
            {QStringLiteral("endLine"), end.line},
            {QStringLiteral("endColumn"), end.column}};
}

QJsonArray relatedOf(const Finding& finding, const ListSources& sources)
{
    QJsonArray related;
    for (const Place& place : finding.related) {
        QJsonObject object = objectOf(place, sources);
        object.insert(QStringLiteral("remark"), place.remark);
        related.append(object);
    }
    return related;
}

QJsonObject objectOf(const Finding& finding, const ListSources& sources)
{
    QJsonObject object = objectOf(finding.place, sources);
    object.insert(QStringLiteral("id"), finding.id);
    object.insert(QStringLiteral("level"), nameOf(finding.level));
    object.insert(QStringLiteral("message"), finding.message);
    object.insert(QStringLiteral("remark"), finding.place.remark);
    object.insert(QStringLiteral("row"), finding.row.index < 0 ? QJsonValue() : finding.row.index + 1);
    object.insert(QStringLiteral("related"), relatedOf(finding, sources));
    object.insert(QStringLiteral("proof"), finding.proof ? FindingJson::of(*finding.proof) : QJsonValue());
    object.insert(QStringLiteral("help"), finding.help);
    object.insert(QStringLiteral("witness"), finding.witness);
    return object;
}

bool isAllProved(const CheckResult& result)
{
    return result.isProved && result.provedRows == result.rows && result.unreadable.isEmpty();
}

/// The rows that were not searched; no rows are known of a file without a readable list.
QJsonArray unsearchedIn(const CheckResult& result, const ListSources& sources)
{
    QJsonArray all;
    for (const auto& [row, id] : result.unsearched) {
        all.append(QJsonObject{{QStringLiteral("file"), sources.file(row.list).name()},
                               {QStringLiteral("row"), row.index + 1},
                               {QStringLiteral("id"), id}});
    }
    for (const model::List list : result.unreadable) {
        all.append(QJsonObject{{QStringLiteral("file"), sources.file(list).name()},
                               {QStringLiteral("row"), QJsonValue()},
                               {QStringLiteral("id"), QString()}});
    }
    return all;
}

} // namespace

QByteArray FindingJson::of(const CheckResult& result, const ListSources& sources)
{
    QJsonArray findings;
    for (const Finding& finding : result.findings) {
        findings.append(objectOf(finding, sources));
    }
    const QJsonObject tool{{QStringLiteral("name"), QStringLiteral("keyboard-handler-keys")},
                           {QStringLiteral("version"), QStringLiteral(KEYBOARD_HANDLER_VERSION)}};
    const QJsonObject document{{QStringLiteral("version"), version},
                               {QStringLiteral("tool"), tool},
                               {QStringLiteral("findings"), findings},
                               {QStringLiteral("proved"), isAllProved(result)},
                               {QStringLiteral("rows"), result.rows},
                               {QStringLiteral("provedRows"), result.provedRows},
                               {QStringLiteral("unsearched"), unsearchedIn(result, sources)},
                               {QStringLiteral("situations"), static_cast<qint64>(result.situations)},
                               {QStringLiteral("steps"), static_cast<qint64>(result.steps)}};
    return QJsonDocument(document).toJson();
}

QJsonObject FindingJson::of(const ProofNote& note)
{
    const model::Proof& proof = note.proof;
    return {{QStringLiteral("model"), note.embosser.isEmpty() ? QJsonValue() : note.embosser},
            {QStringLiteral("environment"), proof.environment.toText()},
            {QStringLiteral("situations"), static_cast<qint64>(proof.situations)},
            {QStringLiteral("steps"), static_cast<qint64>(proof.steps)},
            {QStringLiteral("complete"), proof.isComplete}};
}

} // namespace checker

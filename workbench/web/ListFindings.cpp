// SPDX-License-Identifier: MIT
#include "workbench/web/ListFindings.h"

#include "checker/FindingJson.h"
#include "checker/FindingText.h"
#include "simulator/script/KeyListJson.h"

#include <QJsonDocument>
#include <QSet>

#include <algorithm>

namespace {

constexpr int maxShown = 20;

/// What a finding is about; the row may be at another place in another file.
QString subjectOf(const checker::Finding& finding)
{
    return model::KeyLists::fileOf(finding.place.list) + finding.id + finding.message;
}

} // namespace

ListFindings ListFindings::of(const QMap<QString, QByteArray>& keyLists, const QString& model)
{
    checker::CheckOptions options;
    options.isOrvane = model == QLatin1String("Orvane");
    ListFindings findings;
    findings.m_sources = checker::ListSources::of(keyLists);
    findings.m_result = checker::check(findings.m_sources, options);
    const auto installed =
        checker::ListSources::of(KeyListJson::read(QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER)));
    QSet<QString> intended;
    for (const checker::Finding& finding : checker::check(installed, options).findings) {
        intended.insert(subjectOf(finding));
    }
    auto& all = findings.m_result.findings;
    const auto isIntended = [&](const checker::Finding& finding) {
        return intended.contains(subjectOf(finding));
    };
    all.erase(std::remove_if(all.begin(), all.end(), isIntended), all.end());
    return findings;
}

QString ListFindings::toText() const
{
    if (m_result.findings.isEmpty()) {
        return {};
    }
    const checker::FindingText text(m_sources, false);
    QString shown = QStringLiteral("Findings of keyboard-handler-keys check:\n\n");
    for (const checker::Finding& finding : m_result.findings.mid(0, maxShown)) {
        shown += text.describe(finding);
    }
    const int others = m_result.findings.size() - maxShown;
    shown += others > 0 ? QStringLiteral("... and %1 more.\n").arg(others) : QString();
    return shown + text.summary(m_result).trimmed();
}

QJsonObject ListFindings::toJson() const
{
    checker::CheckResult shown = checker::firstOfEachKind(m_result, maxAlike);
    shown.unsearched = shown.unsearched.mid(0, maxAlike);
    QJsonObject json = QJsonDocument::fromJson(checker::FindingJson::of(shown, m_sources)).object();
    json.insert(QStringLiteral("leftOut"), m_result.findings.size() - shown.findings.size());
    return json;
}

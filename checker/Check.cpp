// SPDX-License-Identifier: MIT
#include "checker/Check.h"

#include "checker/GestureChecks.h"
#include "checker/ProofChecks.h"
#include "checker/RowPlaces.h"
#include "checker/SameKeys.h"
#include "checker/TextChecks.h"
#include "checker/WordChecks.h"

#include <QHash>
#include <QMap>
#include <QSet>

#include <algorithm>
#include <tuple>

namespace checker {

using model::KeyLists;
using model::RowId;

namespace {

/// Whether a row with this finding works nowhere, or not as it is written, so that a proof would repeat it.
bool spoilsRow(const Finding& finding)
{
    static const QSet<QString> ids{QStringLiteral("unknown-key"), QStringLiteral("unknown-state"),
                                   QStringLiteral("joined-states"), QStringLiteral("no-keys"),
                                   QStringLiteral("undefined-receiver")};
    const bool lacksMember = finding.id == QLatin1String("member") && finding.level == Level::Error;
    return finding.row.index >= 0 && (ids.contains(finding.id) || lacksMember);
}

/// Whether a row with this finding is not announced.
bool isDead(const Finding& finding)
{
    static const QSet<QString> ids{QStringLiteral("never"), QStringLiteral("hidden"),
                                   QStringLiteral("state-change")};
    return spoilsRow(finding) ||
           (finding.row.index >= 0 && finding.level == Level::Error && ids.contains(finding.id));
}

/// The rows without a finding of a kind.
QVector<RowId> rowsWithout(bool (*isMeant)(const Finding&), QVector<RowId> ids,
                           const QVector<Finding>& findings)
{
    std::array<QSet<int>, 3> spoilt;
    for (const Finding& finding : findings) {
        if (isMeant(finding)) {
            spoilt[static_cast<size_t>(finding.row.list)].insert(finding.row.index);
        }
    }
    const auto isSpoilt = [&](RowId id) { return spoilt[static_cast<size_t>(id.list)].contains(id.index); };
    ids.erase(std::remove_if(ids.begin(), ids.end(), isSpoilt), ids.end());
    return ids;
}

bool isNotProved(const Finding& finding)
{
    return finding.row.index >= 0 && finding.id == QLatin1String("not-proved");
}

/// Each row with such a finding, with the first of its ids.
QVector<QPair<RowId, QString>> unsearchedRows(const QVector<Finding>& findings)
{
    QMap<RowId, QString> ids;
    for (const Finding& finding : findings) {
        if (spoilsRow(finding) && !ids.contains(finding.row)) {
            ids.insert(finding.row, finding.id);
        }
    }
    QVector<QPair<RowId, QString>> rows;
    for (auto it = ids.cbegin(); it != ids.cend(); ++it) {
        rows.append({it.key(), it.value()});
    }
    return rows;
}

/// What a person perceives may depend on the embosser model; nothing else does.
QVector<Finding> gestureFindings(const ListSources& sources, const RowPlaces& places,
                                 const QVector<RowId>& ids, const CheckOptions& options)
{
    constexpr int onBoth = 3;
    const auto textOf = [](const Finding& finding) { return finding.id + finding.message; };
    QVector<Finding> findings;
    QHash<QString, int> models; // by texts: 1 is Pellit, 2 is Orvane
    for (const bool isOrvane : {false, true}) {
        if (isOrvane != options.isOrvane.value_or(isOrvane)) {
            continue;
        }
        const QVector<Finding> found = GestureChecks::of(sources.lists(isOrvane), places, ids);
        for (const Finding& finding : found) {
            int& known = models[textOf(finding)];
            if (known == 0) {
                findings.append(finding);
            }
            known |= isOrvane ? 2 : 1;
        }
    }
    for (Finding& finding : findings) {
        const int known = models.value(textOf(finding));
        if (!options.isOrvane && known != onBoth) {
            finding.message +=
                QStringLiteral(", on the model %1").arg(QLatin1String(known == 1 ? "Pellit" : "Orvane"));
        }
    }
    return findings;
}

void leaveOut(QVector<Finding>& findings, const KeyLists& lists, const QStringList& allowed)
{
    const auto isAllowed = [&](const Finding& finding) {
        const QString action = finding.row.index < 0 ? QString() : lists.row(finding.row).eAction();
        return allowed.contains(finding.id) || allowed.contains(finding.id + QLatin1Char(':') + action);
    };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isAllowed), findings.end());
}

void sort(QVector<Finding>& findings, const ListSources& sources)
{
    const auto order = [&](const Finding& finding) {
        return std::tie(sources.file(finding.place.list).name(), finding.place.range.begin, finding.id,
                        finding.message);
    };
    std::stable_sort(findings.begin(), findings.end(),
                     [&](const Finding& a, const Finding& b) { return order(a) < order(b); });
}

} // namespace

CheckResult check(const ListSources& sources, const CheckOptions& options)
{
    const KeyLists lists = sources.lists(options.isOrvane.value_or(false));
    const RowPlaces places(sources);
    CheckResult result;
    for (const model::List list : model::allLists) {
        if (sources.found.contains(list)) {
            result.findings += TextChecks::ofFile(sources, list);
        }
        result.findings += TextChecks::ofRows(lists, places, list) + WordChecks::of(lists, places, list);
    }
    const QVector<RowId> sound = rowsWithout(spoilsRow, lists.ids(), result.findings);
    result.rows = lists.ids().size();
    result.unsearched = unsearchedRows(result.findings);
    for (const model::List list : lists.unreadable) {
        if (sources.found.contains(list)) {
            result.unreadable.append(list);
        }
    }
    ProofChecks::run(lists, places, sound, options, result);
    result.findings += SameKeys::of(lists, places, rowsWithout(isDead, lists.ids(), result.findings));
    result.findings += gestureFindings(sources, places, sound, options);
    result.provedRows = rowsWithout(isNotProved, sound, result.findings).size();
    leaveOut(result.findings, lists, options.allowed);
    sort(result.findings, sources);
    return result;
}

CheckResult firstOfEachKind(CheckResult result, int maxAlike)
{
    QHash<QString, int> counts; // by ids
    const auto isOver = [&](const Finding& finding) { return ++counts[finding.id] > maxAlike; };
    auto& findings = result.findings;
    findings.erase(std::remove_if(findings.begin(), findings.end(), isOver), findings.end());
    return result;
}

} // namespace checker

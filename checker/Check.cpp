// SPDX-License-Identifier: MIT
#include "checker/Check.h"

#include "checker/GestureChecks.h"
#include "checker/ProofChecks.h"
#include "checker/RowPlaces.h"
#include "checker/SameKeys.h"
#include "checker/TextChecks.h"
#include "checker/WordChecks.h"

#include <QHash>
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

/// The rows without such a finding.
QVector<RowId> soundRows(const KeyLists& lists, const QVector<Finding>& findings)
{
    std::array<QSet<int>, 3> spoilt;
    for (const Finding& finding : findings) {
        if (spoilsRow(finding)) {
            spoilt[static_cast<size_t>(finding.row.list)].insert(finding.row.index);
        }
    }
    QVector<RowId> ids = lists.ids();
    const auto isSpoilt = [&](RowId id) { return spoilt[static_cast<size_t>(id.list)].contains(id.index); };
    ids.erase(std::remove_if(ids.begin(), ids.end(), isSpoilt), ids.end());
    return ids;
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

void sort(QVector<Finding>& findings, const ListSources& sources)
{
    const auto order = [&](const Finding& finding) {
        return std::make_tuple(sources.file(finding.place.list).name(), finding.place.range.begin, finding.id,
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
    result.findings += SameKeys::of(lists, places);
    const QVector<RowId> sound = soundRows(lists, result.findings);
    result.rows = lists.ids().size();
    result.provedRows = sound.size();
    ProofChecks::run(lists, places, sound, options, result);
    result.findings += gestureFindings(sources, places, sound, options);
    sort(result.findings, sources);
    return result;
}

} // namespace checker

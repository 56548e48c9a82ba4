// SPDX-License-Identifier: MIT
#include "workbench/web/ListChanges.h"

#include "checker/DifferenceReport.h"
#include "simulator/device/DeviceOptions.h"

#include <QJsonDocument>

namespace {

/// For an answer within seconds. The installed lists and a similar draft need a third of this.
constexpr model::Limits searchLimits{2'000'000, 10'000'000};
constexpr int maxText = 1'000'000;

model::KeyLists listsOf(const checker::ListSources& sources, const DeviceOptions& options)
{
    return sources.lists(options.model == QLatin1String("Orvane"));
}

} // namespace

QJsonObject ListChanges::between(const DeviceOptions& before, const DeviceOptions& after)
{
    const checker::ListSources oldSources = checker::ListSources::of(before.keyLists);
    const checker::ListSources newSources = checker::ListSources::of(after.keyLists);
    const checker::ComparedLists compared{QStringLiteral("in use"),
                                          QStringLiteral("draft"),
                                          listsOf(oldSources, before),
                                          listsOf(newSources, after),
                                          checker::PlacesOf::rowsIn(oldSources),
                                          checker::PlacesOf::rowsIn(newSources)};
    checker::DifferenceReport::Extent extent;
    extent.limits = searchLimits;
    extent.maxDifferences = maxDifferences;
    extent.maxText = maxText;
    return QJsonDocument::fromJson(checker::DifferenceReport(compared, extent).json()).object();
}

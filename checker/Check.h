// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/ListSources.h"
#include "checker/SearchWords.h"

#include <QVector>

#include <chrono>
#include <optional>

namespace checker {

struct CheckOptions
{
    /// The embosser model; both if it is not set.
    std::optional<bool> isOrvane;
    /// The fingers of a person: each key that is held takes one.
    int fingers = 2;
    /// The minimum time between two movements of a person's fingers; 0 is any time.
    std::chrono::milliseconds pace{0};
    /// When a search gives up.
    model::Limits limits = searchLimits;
};

struct CheckResult
{
    /// By file, line and column, then by id.
    QVector<Finding> findings;
    int rows = 0;
    /// The rows that the searches were about: those without a finding about their words that leaves nothing
    /// to prove.
    int provedRows = 0;
    /// Whether each search came to its end.
    bool isProved = true;
    /// What the searches visited, for the summary.
    quint64 situations = 0;
    quint64 steps = 0;
};

CheckResult check(const ListSources& sources, const CheckOptions& options);

} // namespace checker

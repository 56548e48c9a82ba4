// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/ListSources.h"
#include "checker/SearchWords.h"

#include <QPair>
#include <QStringList>
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
    /// Findings with these ids are left out; "ID:ACTION" is only about rows with this action.
    QStringList allowed;
    /// When a search gives up.
    model::Limits limits = searchLimits;
};

struct CheckResult
{
    /// By file, line and column, then by id.
    QVector<Finding> findings;
    int rows = 0;
    /// The rows for which the searches came to their end.
    int provedRows = 0;
    /// The rows that were not searched, with the id of the finding that leaves nothing to prove.
    QVector<QPair<model::RowId, QString>> unsearched;
    /// The files without a readable list.
    QVector<model::List> unreadable;
    /// Whether each search came to its end.
    bool isProved = true;
    /// What the searches visited, for the summary.
    quint64 situations = 0;
    quint64 steps = 0;
};

CheckResult check(const ListSources& sources, const CheckOptions& options);

/// The same with at most `maxAlike` findings with each id. A file may have a million of them.
CheckResult firstOfEachKind(CheckResult result, int maxAlike);

} // namespace checker

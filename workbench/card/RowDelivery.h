// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/RowOutcome.h"

/// The part of a row's outcome that is independent of the other rows.
namespace RowDelivery {

/// The outcome of a row that never works.
RowOutcome never(const QString& why);
/// A sentence if the panel lacks one of `keys` or there are none; empty otherwise.
QString missingKeys(const QStringList& keys);

/// The outcome of a row that `keys` complete in each state for which `isPossible` is true. The row is valid
/// in the states `named`.
RowOutcome of(const KeyEntry& row, const QStringList& keys, const QStringList& named,
              bool (*isPossible)(const QString& state));

} // namespace RowDelivery

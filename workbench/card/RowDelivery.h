// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/card/RowFate.h"

/// The part of a row's fate that does not depend on the other rows.
namespace RowDelivery {

RowFate never(const QString& why);
/// Why nobody can press `keys`; empty when the panel has them all.
QString missingKeys(const QStringList& keys);

/// The fate of a row that `keys` complete in each state for which `isPossible` is true: whether its action is
/// announced in one of the states `named`, and to anybody.
RowFate of(const KeyEntry& row, const QStringList& keys, const QStringList& named,
           bool (*isPossible)(const QString& state));

} // namespace RowDelivery

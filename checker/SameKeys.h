// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/RowPlaces.h"

namespace checker {

namespace SameKeys {

/// Pairs of combinations with the same keys in the same state: one gesture announces both. Only `rows` are
/// looked at: those that are announced. In the other lists, one of two such rows hides the other.
QVector<Finding> of(const model::KeyLists& lists, const RowPlaces& places, const QVector<model::RowId>& rows);

} // namespace SameKeys

} // namespace checker

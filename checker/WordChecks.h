// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/RowPlaces.h"

namespace checker {

/// Checks of the names in rows against the vocabulary.
namespace WordChecks {

/// Findings about the keys, states and receivers of a list. A row with an error among them works nowhere.
QVector<Finding> of(const model::KeyLists& lists, const RowPlaces& places, model::List list);

} // namespace WordChecks

} // namespace checker

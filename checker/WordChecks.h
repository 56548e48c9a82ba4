// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/RowPlaces.h"

namespace checker {

/// Checks of the names in rows against the vocabulary.
namespace WordChecks {

/// Whether the row has keys, and each of them exists.
bool areKnownKeys(const KeyEntry& row);
/// A remark about keys that are not written as a list: what the loader reads.
QString readingOfKeys(const KeyEntry& row);

/// Findings about the keys, states and receivers of a list. A row with an error among them works nowhere.
QVector<Finding> of(const model::KeyLists& lists, const RowPlaces& places, model::List list);

} // namespace WordChecks

} // namespace checker

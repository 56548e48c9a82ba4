// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/ListSources.h"
#include "checker/RowPlaces.h"

namespace checker {

/// Checks that do not depend on what a row means.
namespace TextChecks {

/// Findings about a file as a whole: its size, its syntax and its section.
QVector<Finding> ofFile(const ListSources& sources, model::List list);
/// Findings about the elements of a list: members, and values that the loader converts.
QVector<Finding> ofRows(const model::KeyLists& lists, const RowPlaces& places, model::List list);

} // namespace TextChecks

} // namespace checker

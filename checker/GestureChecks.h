// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/RowPlaces.h"

namespace checker {

/// Checks of what a person perceives of the gestures, by playing each in each state.
namespace GestureChecks {

/// Gestures without speech and action in a state, and gestures that announce other rows as well.
/// `lists` has the embosser model. Only of the rows `ids`.
QVector<Finding> of(const model::KeyLists& lists, const RowPlaces& places, const QVector<model::RowId>& ids);

} // namespace GestureChecks

} // namespace checker

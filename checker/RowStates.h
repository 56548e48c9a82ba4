// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"
#include "model/KeyLists.h"

namespace checker::RowStates {

/// The states that the row names, without duplicates and without names that are not states.
QVector<model::State> of(const model::KeyLists& lists, model::RowId row);
/// "Idle, Print and Error".
QString toText(const QVector<model::State>& states);

} // namespace checker::RowStates

// SPDX-License-Identifier: MIT
#pragma once

#include "model/RowProofs.h"

#include <QVector>

namespace checker {

/// The rows without which a row would work.
namespace HidingRows {

/// The first rows of the same list that must go so that `id` is announced; nothing if that is not enough.
QVector<model::RowId> of(const model::KeyLists& lists, model::RowId id, const model::Environment& environment,
                         const model::Limits& limits);
/// Whether `id` works, and all rows that `proofs` found to work still do, with `hiding` at the end of its list.
bool isMovable(const model::KeyLists& lists, model::RowId hiding, model::RowId id, const model::RowProofs& proofs,
               const model::Environment& environment, const model::Limits& limits);

} // namespace HidingRows

} // namespace checker

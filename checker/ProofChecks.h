// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/RowPlaces.h"

namespace checker {

/// Checks by proof: which rows are announced, and in which of their states.
namespace ProofChecks {

/// Adds the findings about the rows `ids`, and what the searches visited, to `result`.
void run(const model::KeyLists& lists, const RowPlaces& places, const QVector<model::RowId>& ids,
         const CheckOptions& options, CheckResult& result);

} // namespace ProofChecks

} // namespace checker

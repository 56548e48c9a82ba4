// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Tries one random script: plays it, checks all invariants, and plays it again to compare.
namespace Trial {

/// Besides those of `invariants::all()`.
constexpr int sameAgainNumber = 25;
constexpr int sameInPiecesNumber = 26;

struct Result
{
    /// The number of the invariant that does not hold; 0 when all do.
    int violated = 0;
    QString text;
};

/// `seed` chooses the pieces of time of the last play.
Result run(const KeyScript& script, quint64 seed);

/// The shortest script that violates the same invariant, as a key script with all that was observed as its
/// expectations, and in front of it, as comments, the seed and what is violated.
QString report(const KeyScript& script, quint64 seed, const Result& result);

} // namespace Trial

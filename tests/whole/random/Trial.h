// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Plays a random script, checks all invariants, and plays it again for comparison.
namespace Trial {

/// In addition to those of `invariants::all()`.
constexpr int repeatabilityNumber = 25;
constexpr int piecewiseNumber = 26;

struct Result
{
    /// The number of the violated invariant; 0 if all hold.
    int violated = 0;
    QString text;
};

/// `seed` determines the pieces of time of the last play.
Result run(const KeyScript& script, quint64 seed);

/// The shortest script that violates the same invariant, as a key script with the observations as
/// expectations. Comments before it contain the seed and the invariant.
QString report(const KeyScript& script, quint64 seed, const Result& result);

} // namespace Trial

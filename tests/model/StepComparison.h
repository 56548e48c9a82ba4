// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyLists.h"

#include <QString>

/// Compares steps of the model with the same steps of the daemon's classes.
namespace StepComparison {

struct Result
{
    quint64 situations = 0;
    quint64 pairs = 0;
    /// The first difference; empty if there is none.
    QString difference;
};

/// Compares all pairs of a reachable situation and an input.
Result all(const model::KeyLists& lists);
/// Compares `pairs` pairs on a random walk, in which the keys of the rows are more frequent than others.
Result walk(const model::KeyLists& lists, int pairs, quint64 seed);

} // namespace StepComparison

// SPDX-License-Identifier: MIT
#pragma once

#include "model/Explorer.h"
#include "model/Playback.h"

#include <QVector>

#include <functional>

namespace model {

/// Two lists that are given the same keys at the same times behave differently.
struct Difference
{
    /// The state in which it shows.
    State state = State::Undefined;
    /// The keys, with their times and what both lists do. Both begin in the same state and end at `end`.
    QVector<PlayedStep> oldSteps;
    QVector<PlayedStep> newSteps;
    std::chrono::milliseconds end{0};
    /// The first outputs that are not equal, of one moment. At least one of the two is not empty.
    QVector<Output> oldOutputs;
    QVector<Output> newOutputs;
};

/// Finds what a person at the device gets from one list and not from another.
///
/// Explores both lists in lockstep, breadth-first and without clocks. A step after which the lists behave differently is
/// not followed, because all that comes after it may differ. Each difference is played with real times.
class ListComparison
{
public:
    /// Whether an output counts.
    using Filter = std::function<bool(const Output&)>;

    ListComparison(const KeyLists& oldLists, const KeyLists& newLists, const Filter& filter);

    /// The shortest run for each kind of difference: each pair of outputs in a state.
    QVector<Difference> find(const Environment& environment, const Limits& limits = {});
    /// The search. Without differences, it proves that there are none if it is complete.
    const Proof& proof() const { return m_proof; }

private:
    struct Pair;
    class Search;

    KeyModel m_old;
    KeyModel m_new;
    Filter m_filter;
    Proof m_proof;
};

} // namespace model

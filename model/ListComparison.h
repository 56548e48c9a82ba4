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
    /// The keys, with their times and what both lists do. Both begin in the same state and end at `end`, the
    /// moment of the difference.
    QVector<PlayedStep> oldSteps;
    QVector<PlayedStep> newSteps;
    std::chrono::milliseconds end{0};
    /// The first outputs that are not equal, of one moment. At least one of the two is not empty.
    QVector<Output> oldOutputs;
    QVector<Output> newOutputs;
};

/// Finds what a person at the device gets from one list and not from another.
///
/// Explores both lists in lockstep, breadth-first and without clocks. A step after which the lists behave
/// differently is not followed, because all that comes after it may differ. Each difference is played with
/// real times.
class ListComparison
{
public:
    /// Whether an output counts. Log lines never do.
    using Filter = std::function<bool(const Output&)>;

    ListComparison(const KeyLists& oldLists, const KeyLists& newLists, const Filter& filter);

    /// A short run for each kind of difference, that is each pair of outputs in a state; after a change of
    /// state, without regard to keys and sentences. `environment` must be that of a person without clocks.
    QVector<Difference> find(const Environment& environment, const Limits& limits = {});
    /// The search. It is complete if all kinds of differences are found: none is left out because of a limit,
    /// or because no real times fit the runs that were tried.
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

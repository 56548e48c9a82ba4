// SPDX-License-Identifier: MIT
#pragma once

#include "model/EnvironmentStep.h"
#include "model/KeyModel.h"
#include "model/NodeStore.h"

#include <functional>

namespace model {

/// When a search gives up. The default number of situations takes about 100 MiB. A step with many effects
/// counts as several.
struct Limits
{
    quint32 situations = 2'000'000;
    quint64 steps = 200'000'000;
};

/// The extent of a search. It proves "never" only if it is complete.
struct Proof
{
    Environment environment;
    quint64 situations = 0;
    quint64 steps = 0;
    bool isComplete = false;
};

/// A run of the daemon: its inputs, from a state with no key held or waiting.
struct Run
{
    State start = State::Undefined;
    QVector<Input> inputs;
};

/// Visits all situations that the model can reach in an environment, breadth-first.
class Explorer
{
public:
    /// One step of the search.
    struct Transition
    {
        const Environment& environment;
        quint32 from;
        const Node& before;
        Input input;
        const Node& after;
        const Effects& effects;
    };
    enum class Next {
        Continue,
        /// Ends the search, whose proof is then incomplete.
        Stop,
    };
    using Visitor = std::function<Next(const Transition&)>;

    Explorer(const KeyModel& keyModel, const Environment& environment, const Limits& limits = {});

    /// Calls `visit` for each step. Must be called only once.
    Proof explore(const Visitor& visit);

    /// A shortest run that ends with `transition`.
    Run pathThrough(const Transition& transition) const;
    /// The situations found so far.
    const NodeStore<Node>& nodes() const { return m_nodes; }

private:
    bool isWithinLimits() const;

    const KeyModel& m_model;
    Limits m_limits;
    EnvironmentStep m_environment;
    NodeStore<Node> m_nodes;
    Proof m_proof;
    quint64 m_extraSteps = 0; // for steps with many effects
};

} // namespace model

// SPDX-License-Identifier: MIT
#include "model/Explorer.h"

#include <algorithm>

namespace model {

namespace {

/// A step with so many effects counts twice towards the limits: thousands of rows may be alike.
constexpr int effectsPerStep = 8;

} // namespace

Explorer::Explorer(const KeyModel& keyModel, const Environment& environment, const Limits& limits)
    : m_model(keyModel), m_limits(limits), m_environment(environment, keyModel.rows())
{
    m_proof.environment = environment;
}

Proof Explorer::explore(const Visitor& visit)
{
    const QVector<Node> starts = m_environment.starts();
    for (Node node : starts) {
        node.situation = m_model.canonical(node.situation);
        m_nodes.insert(node, NodeStore<Node>::noNode, {});
    }
    Inputs inputs;
    Effects effects;
    for (quint32 from = 0; from < m_nodes.size(); ++from) {
        const Node& before = m_nodes.at(from);
        m_environment.allow(before, inputs);
        for (const Input input : qAsConst(inputs)) {
            Node after{m_model.canonical(m_model.step(before.situation, input, effects)),
                       before.surroundings};
            m_environment.follow(after, input, effects);
            ++m_proof.steps;
            m_extraSteps += static_cast<quint64>(effects.size() / effectsPerStep);
            const Next next = visit({m_proof.environment, from, before, input, after, effects});
            m_nodes.insert(after, from, input);
            if (next == Next::Stop || !isWithinLimits()) {
                m_proof.situations = m_nodes.size();
                return m_proof;
            }
        }
    }
    m_proof.situations = m_nodes.size();
    m_proof.isComplete = true;
    return m_proof;
}

Run Explorer::pathThrough(const Transition& transition) const
{
    Run run;
    run.inputs.append(transition.input);
    quint32 at = transition.from;
    for (; m_nodes.parent(at) != NodeStore<Node>::noNode; at = m_nodes.parent(at)) {
        run.inputs.append(m_nodes.input(at));
    }
    run.start = m_nodes.at(at).situation.state;
    std::reverse(run.inputs.begin(), run.inputs.end());
    return run;
}

bool Explorer::isWithinLimits() const
{
    return m_nodes.size() < m_limits.situations && m_proof.steps + m_extraSteps < m_limits.steps;
}

} // namespace model

// SPDX-License-Identifier: MIT
#include "checker/Trial.h"

using model::PlayedStep;

namespace checker {

Trial::Trial(const model::KeyLists& lists, const KeyScript& script, const QVector<Edit>& edits)
    : m_model(Edits::apply(lists, edits))
    , m_edited(Edits::apply(script, edits))
    , m_playback(m_model, m_edited.script)
{
    m_playback.settle();
}

int Trial::idOf(int step) const
{
    const int origin = m_playback.origins().at(step);
    return origin == -1 ? -1 : m_edited.ids.at(origin);
}

Occasion Trial::occasionOf(int step) const
{
    const int id = idOf(step);
    return id == -1 ? Occasion{-1, steps().at(step).at} : Occasion{id, std::nullopt};
}

QVector<model::Output> Trial::outputsAt(const Occasion& occasion) const
{
    QVector<model::Output> outputs;
    for (int i = 0; i < steps().size(); ++i) {
        if (isIn(i, occasion)) {
            outputs += steps().at(i).outputs;
        }
    }
    return outputs;
}

bool Trial::isIn(int step, const Occasion& occasion) const
{
    const PlayedStep& played = steps().at(step);
    if (!occasion.after) {
        return idOf(step) == occasion.scriptStep;
    }
    // An inserted step has the id -1, too.
    const int index = occasion.scriptStep == -1 ? -1 : m_edited.ids.indexOf(occasion.scriptStep);
    const auto begin = index == -1 ? std::chrono::milliseconds::zero() : m_edited.script.steps.at(index).at;
    return m_playback.origins().at(step) == -1 && played.at == begin + *occasion.after;
}

} // namespace checker

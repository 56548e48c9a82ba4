// SPDX-License-Identifier: MIT
#include "model/KeyModel.h"

#include "model/KeyFacts.h"
#include "model/Step.h"

namespace model {

KeyModel::KeyModel(const KeyLists& lists, Scope scope) : m_lists(lists), m_rows(lists), m_scope(scope) {}

Situation KeyModel::step(Situation situation, Input input, Effects& effects) const
{
    effects.clear();
    Step(m_rows, m_lists.isOrvane, situation, effects).take(input);
    return situation;
}

Situation KeyModel::canonical(Situation situation) const
{
    if (m_scope == Scope::RowsOfOneList) {
        situation.gestureSeen = true;
        situation.factoryResetRuns = false;
    }
    // After a gesture the last key is not announced, and of all last keys only Help affects the next key.
    if (situation.gestureSeen && situation.lastKey != KeyFacts::help) {
        situation.lastKey = Key::None;
    }
    return situation;
}

} // namespace model

// SPDX-License-Identifier: MIT
#include "checker/RowStates.h"

namespace checker {

QVector<model::State> RowStates::of(const model::KeyLists& lists, model::RowId row)
{
    QVector<model::State> states;
    const QStringList names = lists.statesOf(row);
    for (const QString& name : names) {
        const auto state = model::Alphabet::stateOf(name);
        if (state && !states.contains(*state)) {
            states.append(*state);
        }
    }
    return states;
}

} // namespace checker

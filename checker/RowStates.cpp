// SPDX-License-Identifier: MIT
#include "checker/RowStates.h"

#include "checker/OutputWords.h"

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

QString RowStates::toText(const QVector<model::State>& states)
{
    QStringList names;
    for (const model::State state : states) {
        names.append(model::Alphabet::nameOf(state));
    }
    return OutputWords::enumeration(names);
}

} // namespace checker

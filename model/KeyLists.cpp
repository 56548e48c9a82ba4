// SPDX-License-Identifier: MIT
#include "model/KeyLists.h"

#include "keys/KeyRules.h"

namespace model {

const QList<KeyEntry>& KeyLists::rows(List list) const
{
    switch (list) {
    case List::LongPresses:
        return longPresses;
    case List::Combinations:
        return combinations;
    case List::Shortcuts:
        break;
    }
    return shortcuts;
}

QVector<RowId> KeyLists::ids() const
{
    QVector<RowId> ids;
    for (const List list : {List::LongPresses, List::Combinations, List::Shortcuts}) {
        for (int i = 0; i < rows(list).size(); ++i) {
            ids.append({list, i});
        }
    }
    return ids;
}

KeyLists KeyLists::only(List list) const
{
    KeyLists lists;
    lists.isOrvane = isOrvane;
    lists.longPresses = list == List::LongPresses ? longPresses : QList<KeyEntry>();
    lists.combinations = list == List::Combinations ? combinations : QList<KeyEntry>();
    lists.shortcuts = list == List::Shortcuts ? shortcuts : QList<KeyEntry>();
    return lists;
}

QStringList KeyLists::statesOf(RowId id) const
{
    const QString& states = row(id).validOnState();
    return id.list == List::LongPresses ? KeyRules::longPressStates(states) : QStringList(states);
}

} // namespace model

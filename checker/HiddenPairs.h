// SPDX-License-Identifier: MIT
#pragma once

#include "model/Playback.h"

namespace checker::HiddenPairs {

/// The rows of one or two keys that would have been completed if the row of `effect`, a `SequenceHides`, had
/// not hidden them.
inline QVector<model::RowId> of(const model::KeyLists& lists, const model::PlayedStep& step,
                                const model::Effect& effect)
{
    const QString first = model::Alphabet::nameOf(step.before.firstKey);
    const QString last = model::Alphabet::nameOf(effect.key);
    QVector<model::RowId> rows;
    for (int i = effect.row.index + 1; i < lists.combinations.size(); ++i) {
        const KeyEntry& row = lists.combinations.at(i);
        if (row.isValid() && !row.isSequence() && row.firstKey() == first && row.lastKey() == last) {
            rows.append({model::List::Combinations, i});
        }
    }
    return rows;
}

} // namespace checker::HiddenPairs

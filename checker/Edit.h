// SPDX-License-Identifier: MIT
#pragma once

#include "model/Alphabet.h"
#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

namespace checker {

/// A change to a script or to its key lists that takes a cause away.
struct Edit
{
    enum class Kind {
        /// The row `row` is not in its list.
        RemoveRow,
        /// A key is not pressed, or the state does not change: `steps` are missing.
        RemoveSteps,
        /// A key is released at once: the second of `steps` comes right after the first.
        ReleaseAtOnce,
        /// The state becomes `state` before the first of `steps` or, without steps, just before `at`.
        InsertState,
    };

    Kind kind = Kind::RemoveRow;
    model::RowId row{model::List::LongPresses, -1};
    /// Indices in the unedited script.
    QVector<int> steps;
    model::State state = model::State::Undefined;
    std::chrono::milliseconds at{0};

    friend bool operator==(const Edit& a, const Edit& b)
    {
        return a.kind == b.kind && a.row == b.row && a.steps == b.steps && a.state == b.state && a.at == b.at;
    }
};

/// A script after edits.
struct EditedScript
{
    KeyScript script;
    /// For each step, its index in the unedited script, or -1 if an edit has inserted it.
    QVector<int> ids;
};

namespace Edits {

EditedScript apply(const KeyScript& script, const QVector<Edit>& edits);
/// The lists in which the removed rows have no keys, so that they never match and all rows keep their
/// numbers.
model::KeyLists apply(const model::KeyLists& lists, const QVector<Edit>& edits);

} // namespace Edits

} // namespace checker

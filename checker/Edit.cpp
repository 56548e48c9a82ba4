// SPDX-License-Identifier: MIT
#include "checker/Edit.h"

#include <algorithm>

using std::chrono::milliseconds;

namespace checker {

namespace {

void insert(EditedScript& edited, int index, const ScriptStep& step, int id)
{
    edited.script.steps.insert(index, step);
    edited.ids.insert(index, id);
}

void removeSteps(EditedScript& edited, const QVector<int>& ids)
{
    for (const int id : ids) {
        const int index = edited.ids.indexOf(id);
        if (index != -1) {
            edited.ids.removeAt(index);
            edited.script.steps.removeAt(index);
        }
    }
}

void releaseAtOnce(EditedScript& edited, int press, int release)
{
    const int from = edited.ids.indexOf(release);
    const int to = edited.ids.indexOf(press) + 1;
    if (from < to || to == 0) {
        return;
    }
    ScriptStep step = edited.script.steps.takeAt(from);
    edited.ids.removeAt(from);
    step.at = edited.script.steps.at(to - 1).at;
    insert(edited, to, step, release);
}

/// Before a step, or after all steps that come before the millisecond of `at`.
void insertState(EditedScript& edited, const Edit& edit)
{
    ScriptStep step;
    step.kind = ScriptStep::Kind::State;
    step.text = model::Alphabet::nameOf(edit.state);
    auto& steps = edited.script.steps;
    int index = edit.steps.isEmpty() ? -1 : edited.ids.indexOf(edit.steps.first());
    if (index != -1) {
        step.at = steps.at(index).at;
    } else {
        step.at = std::max(edit.at - milliseconds(1), milliseconds::zero());
        const auto later = std::find_if(steps.cbegin(), steps.cend(),
                                        [&](const ScriptStep& other) { return other.at > step.at; });
        index = static_cast<int>(later - steps.cbegin());
    }
    insert(edited, index, step, -1);
}

KeyEntry& rowOf(model::KeyLists& lists, model::RowId row)
{
    switch (row.list) {
    case model::List::LongPresses:
        return lists.longPresses[row.index];
    case model::List::Combinations:
        return lists.combinations[row.index];
    case model::List::Shortcuts:
        break;
    }
    return lists.shortcuts[row.index];
}

} // namespace

EditedScript Edits::apply(const KeyScript& script, const QVector<Edit>& edits)
{
    EditedScript edited{script, {}};
    for (int i = 0; i < script.steps.size(); ++i) {
        edited.ids.append(i);
    }
    for (const Edit& edit : edits) {
        if (edit.kind == Edit::Kind::RemoveSteps) {
            removeSteps(edited, edit.steps);
        } else if (edit.kind == Edit::Kind::ReleaseAtOnce) {
            releaseAtOnce(edited, edit.steps.first(), edit.steps.last());
        } else if (edit.kind == Edit::Kind::InsertState) {
            insertState(edited, edit);
        }
    }
    return edited;
}

model::KeyLists Edits::apply(const model::KeyLists& lists, const QVector<Edit>& edits)
{
    model::KeyLists edited = lists;
    for (const Edit& edit : edits) {
        if (edit.kind == Edit::Kind::RemoveRow) {
            rowOf(edited, edit.row) = KeyEntry();
        }
    }
    return edited;
}

} // namespace checker

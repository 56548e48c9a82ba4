// SPDX-License-Identifier: MIT
#pragma once

#include "card/CardTypes.h"
#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

namespace checker {

/// A person practises the gestures of a key card.
namespace Practice {

struct Judgement
{
    /// Whether the keys announce the action of the task.
    bool isRight = false;
    /// What the keys do, and why that is not the task, as sentences. Names from the key lists are not
    /// escaped.
    QString text;
    /// From the end of the script until the keys so far no longer matter for later ones.
    std::chrono::milliseconds forgottenAfter{0};
};

/// Judges the keys of `script` by `task`, an entry of the card for its state.
Judgement judge(const model::KeyLists& lists, const KeyScript& script, const KeyCardEntry& task);

/// The script with short pauses: no wait is too long. How long a key is held counts only if the task is a
/// hold.
KeyScript atOwnPace(KeyScript script, const KeyCardEntry& task);

/// Whether as many keys have been pressed and released as the task has.
bool isComplete(const KeyScript& script, const KeyCardEntry& task);

} // namespace Practice

} // namespace checker

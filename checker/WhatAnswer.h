// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

namespace checker {

/// What the keys of a script do.
struct WhatAnswer
{
    /// A line for each speech, announcement and refused action, with its time. Names from the key lists are
    /// not escaped.
    QStringList lines;
    /// Whether anything is spoken or announced.
    bool isPerceived = false;
    /// Whether a key that is held at the end repeats its long press, of which the lines show the first two.
    bool goesOn = false;

    /// "Nothing is spoken and nothing is announced", without a full stop.
    static QString nothing();

    /// Plays the steps of `script` on the model until nothing more is due. The rows of the script do not
    /// matter.
    static WhatAnswer of(const model::KeyLists& lists, const KeyScript& script);
};

} // namespace checker

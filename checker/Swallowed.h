// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Trial.h"

namespace checker {

/// Something that a person may expect of a key and that does not happen.
struct Swallowed
{
    enum class Kind {
        /// A released key is not spoken, because of an action before it.
        NotSpoken,
        /// A released key waits for the end of the window but is not sent then.
        NotSent,
        /// A completed row is not announced, because it names other states.
        Refused,
        /// Likewise, but the keys cannot complete the row in any state that it names.
        RefusedAlways,
        /// A completed row is not announced, because of its receiver.
        Dropped,
        /// A row is not completed, because another one hides it.
        Hidden,
        /// A release in Startup.
        Ignored,
    };

    Kind kind = Kind::NotSpoken;
    /// The step of the playback that decided.
    int step = 0;
    /// When it would have happened.
    Occasion occasion;
    model::Key key = model::Key::None;
    /// The row that was refused or dropped, or that hides; otherwise its index is -1.
    model::RowId row{model::List::LongPresses, -1};

    /// All of them, in the order of the steps; `RefusedAlways` only if the row names no state at all.
    static QVector<Swallowed> in(const Trial& trial);

    /// Whether the expected does happen in another trial of the script.
    bool isMended(const Trial& original, const Trial& other) const;
};

} // namespace checker

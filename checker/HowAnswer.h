// SPDX-License-Identifier: MIT
#pragma once

#include "checker/PlaceOf.h"
#include "checker/ScriptRows.h"
#include "model/Alphabet.h"
#include "model/KeyLists.h"

#include <optional>

namespace checker {

/// The ways to an action, as comments and key scripts.
struct HowAnswer
{
    /// Paragraphs of lines: comments, which begin with "# ", and below them the statements of a script.
    QVector<QStringList> paragraphs;
    /// Whether a row, or the daemon itself, has the action. Otherwise, the rest is empty.
    bool isKnown = false;
    /// Whether keys announce the action in one of the states.
    bool isAnnounced = false;
    /// Whether each search came to its end.
    bool isProved = true;

    /// `state` limits the answer to one state. `rows` are written into the scripts; without them, the scripts
    /// are for the lists of a device. Names from the lists are not escaped.
    static HowAnswer of(const QString& action, const model::KeyLists& lists,
                        std::optional<model::State> state, const PlaceOf& placeOf,
                        const std::optional<ScriptRows>& rows);
    /// All actions that can be asked for.
    static QStringList actionsOf(const model::KeyLists& lists);
};

} // namespace checker

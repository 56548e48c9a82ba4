// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyLists.h"
#include "simulator/script/KeyScript.h"

namespace checker {

/// What a gesture does, in a sentence.
struct GestureAnswer
{
    struct Announcement
    {
        /// Since the start of the script.
        std::chrono::milliseconds at{0};
        QString action;
        QString receiver;
        QStringList keys;
        /// The states that the row of the action names; empty for actions without a row.
        QStringList states;
    };

    /// "Help, then Feed: PaperStatus, to PrintManager, only in Idle." Names from the key lists are not
    /// escaped.
    QString sentence;
    /// In the order in which they come.
    QVector<Announcement> announcements;
    /// From the end of the script until the keys so far no longer matter for later ones.
    std::chrono::milliseconds forgottenAfter{0};

    /// Plays the steps of `script` on the model until nothing more is due. The rows of the script do not
    /// matter.
    static GestureAnswer of(const model::KeyLists& lists, const KeyScript& script);
};

} // namespace checker

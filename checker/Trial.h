// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Edit.h"
#include "checker/ScriptPlayback.h"

namespace checker {

/// A moment in a script at which something could be spoken or announced.
struct Occasion
{
    /// An index in the unedited script; -1 is the start of the script.
    int scriptStep = -1;
    /// Nothing while the step is handled; otherwise the time from that step to a timer of the daemon.
    std::optional<std::chrono::milliseconds> after;
};

/// Plays a script with edits until nothing more is due.
class Trial
{
public:
    Trial(const model::KeyLists& lists, const KeyScript& script, const QVector<Edit>& edits = {});
    Q_DISABLE_COPY(Trial)

    const model::KeyModel& keyModel() const { return m_model; }
    const QVector<model::PlayedStep>& steps() const { return m_playback.playback().steps(); }
    /// The index in the unedited script of the step during which a step of the playback came; -1 if it came
    /// between two steps, or during an inserted one.
    int idOf(int step) const;
    /// The moment of a step of the playback; a timer is counted from the start.
    Occasion occasionOf(int step) const;
    /// The outputs in a moment.
    QVector<model::Output> outputsAt(const Occasion& occasion) const;
    /// Whether a step of the playback belongs to a moment.
    bool isIn(int step, const Occasion& occasion) const;

private:
    model::KeyModel m_model;
    EditedScript m_edited;
    ScriptPlayback m_playback;
};

} // namespace checker

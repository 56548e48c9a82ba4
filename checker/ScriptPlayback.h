// SPDX-License-Identifier: MIT
#pragma once

#include "model/Playback.h"
#include "simulator/script/KeyScript.h"

#include <QVector>

namespace checker {

/// Plays the steps of a key script on the model.
class ScriptPlayback
{
public:
    /// A sentence about the first statement that the model does not know; empty if it knows all of them.
    static QString unknownStatement(const KeyScript& script);

    /// Plays all steps; statements that the model does not know do nothing. `keyModel` must outlive the
    /// playback.
    ScriptPlayback(const model::KeyModel& keyModel, const KeyScript& script);

    /// Waits until nothing more is due. A key that is held may repeat its long press forever: this ends after
    /// the second time, and returns false.
    bool settle();

    const model::Playback& playback() const { return m_playback; }
    /// For each step of the playback, the index of the script's step that passed it to the daemon or during
    /// which a timer expired; -1 between the steps.
    const QVector<int>& origins() const { return m_origins; }

private:
    void take(const ScriptStep& step);
    void take(const QVector<model::Input>& inputs);
    void noteOrigins(int scriptStep);
    std::optional<std::chrono::milliseconds> nextExpiry() const;
    bool hasRepeatedLongPress(int firstStep) const;

    model::Playback m_playback;
    bool m_hasStateHandler;
    QVector<int> m_origins;
};

} // namespace checker

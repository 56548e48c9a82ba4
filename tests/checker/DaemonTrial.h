// SPDX-License-Identifier: MIT
#pragma once

#include "checker/CauseSearch.h"
#include "tests/whole/random/Play.h"

#include <QStringList>

/// Plays a script on the daemon's classes.
class DaemonTrial
{
public:
    /// `script` must have rows.
    explicit DaemonTrial(const KeyScript& script);
    /// Plays the script of `original` with edits, up to the moment `last`.
    DaemonTrial(const DaemonTrial& original, const QVector<checker::Edit>& edits,
                const checker::Occasion& last);

    /// Without the edits.
    const KeyScript& script() const { return m_script; }
    /// When the play ends.
    std::chrono::milliseconds end() const { return m_play.script.end; }
    std::chrono::milliseconds timeOf(const checker::Occasion& occasion) const;
    /// Whether the daemon does what it swallowed in `original`.
    bool isMended(const checker::Swallowed& swallowed, const DaemonTrial& original,
                  const checker::CauseSearch& search) const;
    /// When the edits can matter for the first time. A removed row matters from its first effect.
    std::chrono::milliseconds earliest(const QVector<checker::Edit>& edits,
                                       const checker::CauseSearch& search) const;
    /// All observations before a time, without answers that list the rows.
    QStringList before(std::chrono::milliseconds time) const;

private:
    static std::chrono::milliseconds timeIn(const checker::EditedScript& edited,
                                            const checker::Occasion& occasion);
    void play(const checker::EditedScript& edited);
    int stepOf(const PlayEvent& event) const;
    QStringList observationsAt(const checker::Occasion& occasion) const;

    KeyScript m_script;
    QVector<int> m_ids;
    Play m_play;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "checker/CauseSearch.h"
#include "tests/whole/random/Play.h"

#include <QStringList>

/// Plays a script with edits on the daemon's classes.
class DaemonTrial
{
public:
    /// `script` must have rows.
    explicit DaemonTrial(const KeyScript& script, const QVector<checker::Edit>& edits = {});

    /// Without the edits.
    const KeyScript& script() const { return m_script; }
    std::chrono::milliseconds timeOf(const checker::Occasion& occasion) const;
    /// Whether the daemon does what it swallowed in `original`.
    bool isMended(const checker::Swallowed& swallowed, const DaemonTrial& original,
                  const checker::CauseSearch& search) const;
    /// When the edits can matter for the first time. A removed row matters from its first effect.
    std::chrono::milliseconds earliest(const QVector<checker::Edit>& edits,
                                       const checker::CauseSearch& search) const;
    /// All observations before a time.
    QStringList before(std::chrono::milliseconds time) const;

private:
    int stepOf(const PlayEvent& event) const;
    QStringList observationsAt(const checker::Occasion& occasion) const;

    KeyScript m_script;
    QVector<int> m_ids;
    Play m_play;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Swallowed.h"

#include <limits>

namespace checker {

/// Searches for the causes of what a script's keys do not do. Each cause is an edit that takes it away.
class CauseSearch
{
public:
    /// After `maxTrials` plays of the script, no more is found.
    CauseSearch(const model::KeyLists& lists, const KeyScript& script, int maxTrials = unlimited);

    static constexpr int unlimited = std::numeric_limits<int>::max();

    /// The script without edits.
    const Trial& original() const { return m_original; }

    /// What is swallowed in it, in the order of its steps.
    QVector<Swallowed> swallowed() const;

    /// A smallest set of causes: with all its edits the expected happens, and with only some of them it does
    /// not. Sets of more than eight are minimal only in that each edit is necessary. Empty if none is found.
    QVector<Edit> causesOf(const Swallowed& swallowed) const;

    /// Whether the edits make the expected happen.
    bool isMendedBy(const Swallowed& swallowed, const QVector<Edit>& edits) const;

private:
    bool isExhausted() const { return m_trials >= m_maxTrials; }
    QVector<Edit> otherState(const Swallowed& swallowed) const;
    QVector<Edit> candidates(const Swallowed& swallowed, const Trial& trial) const;
    QVector<Edit> candidatesOfWait(const Swallowed& swallowed, const Trial& trial) const;
    QVector<Edit> gesturesBefore(const Swallowed& swallowed, const Trial& trial, int step) const;
    Edit withoutFactoryReset(const Swallowed& swallowed, const Trial& trial, int step) const;
    Edit withoutKey(const Trial& trial, int step) const;
    QVector<Edit> smallest(const Swallowed& swallowed, QVector<Edit> edits) const;

    model::KeyLists m_lists;
    KeyScript m_script;
    Trial m_original;
    int m_maxTrials;
    mutable int m_trials = 0;
};

} // namespace checker

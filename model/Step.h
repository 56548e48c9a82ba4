// SPDX-License-Identifier: MIT
#pragma once

#include "model/Effect.h"
#include "model/Input.h"
#include "model/RowTables.h"
#include "model/Situation.h"

namespace model {

/// Applies one input to a situation: what the router and the three recognisers do, in their order.
class Step
{
public:
    /// Changes `situation` and appends to `effects`.
    Step(const RowTables& rows, bool isOrvane, Situation& situation, Effects& effects)
        : m_rows(rows), m_isOrvane(isOrvane), m_now(situation), m_effects(effects)
    {}

    /// An expiry must be that of a running timer.
    void take(Input input);

private:
    void takeKeyEvent(Input input);
    void press(Key key);
    void release(Key key);
    void releaseInIdle(Key key);
    void releaseInTest(Key key);
    void repeat(Key key);
    void endWindow();
    void completeLongPress();
    void completeFactoryReset();

    void pressForShortcuts(Key key);
    void releaseForCombinations(Key key);
    void completeCombination(int row, Key key);
    void extendSequence(Key key);
    void stopLongPress();
    void closeShortcut();
    void deliver(RowId row, Key key);
    void markGesture();
    void forgetKeys();

    void note(Rule rule, Key key = Key::None) { m_effects.append({rule, key}); }
    void note(Rule rule, Key key, RowId row, quint32 count = 1) { m_effects.append({rule, key, row, count}); }

    const RowTables& m_rows;
    bool m_isOrvane;
    Situation& m_now;
    Effects& m_effects;
};

} // namespace model

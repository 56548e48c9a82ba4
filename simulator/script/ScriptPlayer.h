// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QObject>
#include <QTimer>

class ScriptTarget;

/// Plays the steps of a key script, each at its time from the start.
///
/// All times come from the thread's event dispatcher, so that tests can use a virtual clock.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    /// `target` must live as long as the player.
    ScriptPlayer(const KeyScript& script, ScriptTarget& target, QObject* parent = nullptr);

    /// Must be called once; playing needs a running event loop.
    void start();
    /// Drops the remaining steps; `finished` is not emitted.
    void stop();

Q_SIGNALS:
    void aboutToPlay(const ScriptStep& step);
    /// Emitted half a second after the last step and the last expectation.
    void finished();

private:
    void schedule(int end);
    void playDue();
    void finish();

    KeyScript m_script;
    ScriptTarget& m_target;
    /// All steps before `m_next` are played, all before `m_due` are due.
    int m_next = 0;
    int m_due = 0;
    bool m_stopped = false;
    QTimer m_turnTimer;
};

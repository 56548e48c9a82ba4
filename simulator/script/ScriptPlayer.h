// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QObject>
#include <QTimer>

class ScriptTarget;

/// Plays the steps of a key script, each at its time from the start.
///
/// All times come from the thread's event dispatcher, so that a script plays just as well on the clock of
/// a test.
class ScriptPlayer : public QObject
{
    Q_OBJECT

public:
    /// `target` must live as long as the player.
    ScriptPlayer(const KeyScript& script, ScriptTarget& target, QObject* parent = nullptr);

    /// To be called once, from a running or a coming event loop.
    void start();
    /// Takes no further step; `finished` does not come any more.
    void stop();

Q_SIGNALS:
    /// `step` is being taken.
    void stepping(const ScriptStep& step);
    /// Some time has passed since the last step was taken and the last expectation was due.
    void finished();

private:
    void schedule(int end);
    void takeDue();
    void finish();

    KeyScript m_script;
    ScriptTarget& m_target;
    /// The steps before these are taken, and due.
    int m_next = 0;
    int m_due = 0;
    bool m_stopped = false;
    QTimer m_turnTimer;
};

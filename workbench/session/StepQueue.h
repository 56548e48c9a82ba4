// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QMap>
#include <QObject>
#include <QPair>
#include <QVector>

class ScriptPlayer;
class ScriptTarget;

/// What several clients have under way on one device, and the keys that they hold.
class StepQueue : public QObject
{
    Q_OBJECT

public:
    explicit StepQueue(QObject* parent = nullptr);

    /// The device for what follows, or none. What was under way is given up, the keys are forgotten.
    void setTarget(ScriptTarget* target);

    /// How many steps, and ends of scripts, are still to come.
    int pending() const;

    /// Takes the steps that are due at once, then the others at their times.
    void take(const KeyScript& script, int client);
    /// Plays a whole script; `finished` tells when nothing more is expected of it.
    void play(const KeyScript& script, int client);
    /// Gives up what `client` has under way and releases its keys.
    void drop(int client);

Q_SIGNALS:
    /// `step` is about to be taken.
    void stepping(const ScriptStep& step);
    void finished(int client);

private:
    struct Play
    {
        ScriptPlayer* player = nullptr;
        int client = 0;
        int stepsLeft = 0;
    };
    using Key = QPair<int, QString>;

    void onStepping(ScriptPlayer* player, int client, const ScriptStep& step);
    void onFinished(ScriptPlayer* player, int client);
    void takeNow(const ScriptStep& step, int client);
    void prepare(const ScriptStep& step, int client);
    void remove(int index);

    ScriptTarget* m_target = nullptr;
    QVector<Play> m_plays;
    /// Who pressed each key that is down.
    QMap<Key, int> m_held;
};

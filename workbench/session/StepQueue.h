// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QMap>
#include <QObject>
#include <QPair>
#include <QVector>

class ScriptPlayer;
class ScriptTarget;

/// The pending steps of several clients on one device, and the keys that the clients hold.
class StepQueue : public QObject
{
    Q_OBJECT

public:
    explicit StepQueue(QObject* parent = nullptr);

    /// Sets the device, or null. Clears pending steps and held keys.
    void setTarget(ScriptTarget* target);

    /// The number of pending steps and ends of scripts.
    int pending() const;

    /// Executes steps without a delay immediately, the others at their times.
    void execute(const KeyScript& script, int client);
    /// Plays a whole script; `finished` reports its end.
    void play(const KeyScript& script, int client);
    /// Cancels pending steps of `client` and releases its keys.
    void cancel(int client);

Q_SIGNALS:
    void aboutToPlay(const ScriptStep& step);
    void finished(int client);

private:
    struct Play
    {
        ScriptPlayer* player = nullptr;
        int client = 0;
        int stepsLeft = 0;
    };
    using Key = QPair<int, QString>;

    void onAboutToPlay(ScriptPlayer* player, int client, const ScriptStep& step);
    void onFinished(ScriptPlayer* player, int client);
    void executeNow(const ScriptStep& step, int client);
    void prepare(const ScriptStep& step, int client);
    void remove(int index);

    ScriptTarget* m_target = nullptr;
    QVector<Play> m_plays;
    /// The client that pressed each key that is down.
    QMap<Key, int> m_held;
};

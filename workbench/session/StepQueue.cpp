// SPDX-License-Identifier: MIT
#include "workbench/session/StepQueue.h"

#include "simulator/script/ScriptPlayer.h"
#include "simulator/script/ScriptTarget.h"

#include <algorithm>
#include <numeric>

using namespace std::chrono_literals;

StepQueue::StepQueue(QObject* parent) : QObject(parent) {}

void StepQueue::setTarget(ScriptTarget* target)
{
    while (!m_plays.isEmpty()) {
        remove(0);
    }
    m_held.clear();
    m_target = target;
}

int StepQueue::pending() const
{
    return std::accumulate(m_plays.begin(), m_plays.end(), 0,
                           [](int sum, const Play& play) { return sum + play.stepsLeft + 1; });
}

void StepQueue::execute(const KeyScript& script, int client)
{
    KeyScript later = script;
    const auto end = std::find_if(later.steps.begin(), later.steps.end(),
                                  [](const ScriptStep& step) { return step.at > 0ms; });
    later.steps.erase(later.steps.begin(), end);
    for (int i = 0; i < script.steps.size() - later.steps.size(); ++i) {
        executeNow(script.steps.at(i), client);
    }
    if (!later.steps.isEmpty() && m_target) {
        play(later, client);
    }
}

void StepQueue::play(const KeyScript& script, int client)
{
    auto* player = new ScriptPlayer(script, *m_target, this);
    m_plays.append({player, client, script.steps.size()});
    connect(player, &ScriptPlayer::aboutToPlay, this,
            [this, player, client](const ScriptStep& step) { onAboutToPlay(player, client, step); });
    connect(player, &ScriptPlayer::finished, this, [this, player, client] { onFinished(player, client); });
    player->start();
}

void StepQueue::cancel(int client)
{
    for (int i = m_plays.size() - 1; i >= 0; --i) {
        if (m_plays.at(i).client == client) {
            remove(i);
        }
    }
    const QList<Key> keys = m_held.keys(client);
    for (const Key& key : keys) {
        executeNow({0ms, ScriptStep::Kind::Release, key.first, key.second, {}, {}}, client);
    }
}

void StepQueue::onAboutToPlay(ScriptPlayer* player, int client, const ScriptStep& step)
{
    for (Play& play : m_plays) {
        play.stepsLeft -= play.player == player ? 1 : 0;
    }
    prepare(step, client);
}

void StepQueue::onFinished(ScriptPlayer* player, int client)
{
    const auto end = std::find_if(m_plays.begin(), m_plays.end(),
                                  [player](const Play& play) { return play.player == player; });
    remove(int(end - m_plays.begin()));
    Q_EMIT finished(client);
}

void StepQueue::executeNow(const ScriptStep& step, int client)
{
    if (m_target) {
        prepare(step, client);
    }
    // A slot may have removed the device.
    if (m_target) {
        m_target->play(step);
    }
}

void StepQueue::prepare(const ScriptStep& step, int client)
{
    if (step.kind == ScriptStep::Kind::Press) {
        m_held.insert({step.keyboard, step.text}, client);
    } else if (step.kind == ScriptStep::Kind::Release) {
        m_held.remove({step.keyboard, step.text});
    }
    Q_EMIT aboutToPlay(step);
}

void StepQueue::remove(int index)
{
    // Deleted later, because the player may be the caller.
    ScriptPlayer* player = m_plays.takeAt(index).player;
    player->stop();
    player->deleteLater();
}

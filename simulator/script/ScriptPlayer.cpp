// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptPlayer.h"

#include "simulator/script/ScriptTarget.h"

using namespace std::chrono_literals;

namespace {

/// Leaves time for the effects of the last step, expected or not.
constexpr std::chrono::milliseconds grace = 500ms;
/// Limits the steps that are played before control returns to the event loop.
constexpr int maxStepsAtOnce = 100;

} // namespace

ScriptPlayer::ScriptPlayer(const KeyScript& script, ScriptTarget& target, QObject* parent)
    : QObject(parent), m_script(script), m_target(target)
{
    m_turnTimer.setSingleShot(true);
    connect(&m_turnTimer, &QTimer::timeout, this, &ScriptPlayer::playDue);
}

void ScriptPlayer::start()
{
    // All timers start now, because chained timers would accumulate delays. There is one for each moment, so
    // that simultaneous steps keep their order.
    const QVector<ScriptStep>& steps = m_script.steps;
    for (int first = 0, end = 0; first < steps.size(); first = end) {
        while (end < steps.size() && steps.at(end).at == steps.at(first).at) {
            ++end;
        }
        schedule(end);
    }
    QTimer::singleShot(m_script.duration() + grace, Qt::PreciseTimer, this, &ScriptPlayer::finish);
}

void ScriptPlayer::stop()
{
    m_stopped = true;
}

void ScriptPlayer::schedule(int end)
{
    QTimer::singleShot(m_script.steps.at(end - 1).at, Qt::PreciseTimer, this, [this, end] {
        m_due = end;
        playDue();
    });
}

void ScriptPlayer::playDue()
{
    for (int played = 0; m_next < m_due && !m_stopped; ++played) {
        if (played == maxStepsAtOnce) {
            m_turnTimer.start(0);
            return;
        }
        const ScriptStep step = m_script.steps.at(m_next++);
        Q_EMIT aboutToPlay(step);
        // A slot may have stopped the player.
        if (!m_stopped) {
            m_target.play(step);
        }
    }
}

void ScriptPlayer::finish()
{
    if (m_next < m_script.steps.size()) {
        QTimer::singleShot(grace, Qt::PreciseTimer, this, &ScriptPlayer::finish);
    } else if (!m_stopped) {
        Q_EMIT finished();
    }
}

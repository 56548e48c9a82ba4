// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptPlayer.h"

#include "simulator/script/ScriptTarget.h"

using namespace std::chrono_literals;

namespace {

/// For what the last step causes to be observed, and for something unexpected to show itself.
constexpr std::chrono::milliseconds grace = 500ms;
/// So many steps of one moment are taken before the event loop has its turn.
constexpr int mostAtOnce = 100;

} // namespace

ScriptPlayer::ScriptPlayer(const KeyScript& script, ScriptTarget& target, QObject* parent)
    : QObject(parent), m_script(script), m_target(target)
{
    m_turnTimer.setSingleShot(true);
    connect(&m_turnTimer, &QTimer::timeout, this, &ScriptPlayer::takeDue);
}

void ScriptPlayer::start()
{
    // One timer for each moment, all set now: setting the next one when the last has fired would add up
    // the delays, and steps of the same moment must keep their order.
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
        takeDue();
    });
}

void ScriptPlayer::takeDue()
{
    for (int taken = 0; m_next < m_due && !m_stopped; ++taken) {
        if (taken == mostAtOnce) {
            m_turnTimer.start(0);
            return;
        }
        const ScriptStep step = m_script.steps.at(m_next++);
        Q_EMIT stepping(step);
        // Who is told of the step may stop the player.
        if (!m_stopped) {
            m_target.take(step);
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

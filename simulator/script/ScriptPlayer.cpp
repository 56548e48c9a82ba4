// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptPlayer.h"

#include "simulator/script/ScriptTarget.h"

#include <QTimer>

using namespace std::chrono_literals;

namespace {

/// For what the last step causes to be observed, and for something unexpected to show itself.
constexpr std::chrono::milliseconds grace = 500ms;

} // namespace

ScriptPlayer::ScriptPlayer(const KeyScript& script, ScriptTarget& target, QObject* parent)
    : QObject(parent), m_script(script), m_target(target)
{}

void ScriptPlayer::start()
{
    // One timer for each moment, all set now: setting the next one when the last has fired would add up
    // the delays, and steps of the same moment must keep their order.
    const QVector<ScriptStep>& steps = m_script.steps;
    for (int first = 0, end = 0; first < steps.size(); first = end) {
        while (end < steps.size() && steps.at(end).at == steps.at(first).at) {
            ++end;
        }
        schedule(first, end);
    }
    QTimer::singleShot(m_script.duration() + grace, Qt::PreciseTimer, this, &ScriptPlayer::finished);
}

void ScriptPlayer::schedule(int first, int end)
{
    QTimer::singleShot(m_script.steps.at(first).at, Qt::PreciseTimer, this,
                       [this, first, end] { take(first, end); });
}

void ScriptPlayer::take(int first, int end)
{
    for (int i = first; i < end; ++i) {
        const ScriptStep& step = m_script.steps.at(i);
        Q_EMIT stepping(step);
        m_target.take(step);
    }
}

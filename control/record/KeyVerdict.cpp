// SPDX-License-Identifier: MIT
#include "control/record/KeyVerdict.h"

#include "model/DaemonInputs.h"
#include "model/Playback.h"
#include "simulator/script/KeyValue.h"
#include "simulator/script/Transcript.h"

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace control {

namespace {

using StepKind = ScriptStep::Kind;

/// Repetitions after the first change nothing, and one of them is always near the time of a long press.
bool isRepetition(const ScriptStep& step)
{
    return step.kind == StepKind::Record && step.record.value == KeyValue::repeated;
}

/// Plays a script on the model and watches how close its steps come to the time limits.
class Trial
{
public:
    Trial(const KeyModel& keyModel, const KeyScript& script);

    Observations announcements() const;
    bool isNearLimit() const { return m_isNearLimit; }

private:
    void waitUntil(milliseconds time) { m_playback.wait(std::max(time - m_playback.now(), milliseconds(0))); }
    void take(const ScriptStep& step);
    bool isLimitNear() const;

    Playback m_playback;
    bool m_isNearLimit = false;
};

Trial::Trial(const KeyModel& keyModel, const KeyScript& script)
    : m_playback(keyModel, Alphabet::stateOf(script.initialState).value_or(State::Undefined))
{
    for (const ScriptStep& step : script.steps) {
        waitUntil(step.at);
        m_isNearLimit = m_isNearLimit || (!isRepetition(step) && isLimitNear());
        take(step);
    }
    waitUntil(script.end);
}

Observations Trial::announcements() const
{
    Observations all;
    for (const PlayedStep& step : m_playback.steps()) {
        for (const Output& output : step.outputs) {
            if (output.kind == Output::Kind::Announce) {
                all.append({step.at, output.toText(QString())});
            }
        }
    }
    return all;
}

void Trial::take(const ScriptStep& step)
{
    if (step.kind == StepKind::Press) {
        m_playback.press(*Alphabet::keyOf(step.text), step.keyboard);
    } else if (step.kind == StepKind::Release) {
        m_playback.release(*Alphabet::keyOf(step.text), step.keyboard);
    }
    const QVector<Input> inputs =
        step.kind == StepKind::Record
            ? DaemonInputs::ofRecord(step.record.type, step.record.code, step.record.value, step.keyboard)
        : step.kind == StepKind::State ? DaemonInputs::ofState(step.text)
                                       : QVector<Input>();
    for (const Input input : inputs) {
        m_playback.take(input);
    }
}

/// Whether a timer is about to expire, or has just expired.
bool Trial::isLimitNear() const
{
    constexpr Input::Kind limits[] = {Input::Kind::WindowEnd, Input::Kind::LongPressTime,
                                      Input::Kind::FactoryResetTime};
    const milliseconds now = m_playback.now();
    const bool isComing = std::any_of(std::begin(limits), std::end(limits), [&](Input::Kind kind) {
        const auto due = m_playback.due(Input::of(kind));
        return due && *due - now <= KeyVerdict::limitTolerance;
    });
    const auto& steps = m_playback.steps();
    bool isPast = false;
    for (auto step = steps.rbegin(); step != steps.rend() && now - step->at <= KeyVerdict::limitTolerance;
         ++step) {
        isPast =
            isPast || std::find(std::begin(limits), std::end(limits), step->input.kind) != std::end(limits);
    }
    return isComing || isPast;
}

} // namespace

KeyVerdict KeyVerdict::of(const KeyModel& keyModel, const KeyScript& script)
{
    const Trial trial(keyModel, script);
    const QStringList differences =
        Transcript::difference(script, trial.announcements(), Transcript::Clock::Virtual);
    return {differences.value(0).simplified(), trial.isNearLimit()};
}

} // namespace control

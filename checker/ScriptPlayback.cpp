// SPDX-License-Identifier: MIT
#include "checker/ScriptPlayback.h"

#include "model/DaemonInputs.h"

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

bool runsAtStart(const KeyScript& script)
{
    using Condition = ServiceChange::Condition;
    return script.services.value(ServiceChange::stateHandler, Condition::Running) == Condition::Running;
}

State startOf(const KeyScript& script)
{
    const State named = Alphabet::stateOf(script.initialState).value_or(State::Undefined);
    return runsAtStart(script) ? named : State::Undefined;
}

bool isUnknown(const ScriptStep& step)
{
    return step.kind == ScriptStep::Kind::Console ||
           (step.kind == ScriptStep::Kind::Service && step.service.service != ServiceChange::stateHandler);
}

} // namespace

QString ScriptPlayback::unknownStatement(const KeyScript& script)
{
    const auto step = std::find_if(script.steps.begin(), script.steps.end(), isUnknown);
    const bool isConsole = step != script.steps.end() && step->kind == ScriptStep::Kind::Console;
    if (isConsole) {
        return QStringLiteral(
            "The model does not know console lines; keyboard-handler-simulator plays them.");
    }
    if (step != script.steps.end() || script.services.contains(ServiceChange::speechDaemon)) {
        return QStringLiteral(
            "The model does not know failures of the speech daemon; keyboard-handler-simulator plays them.");
    }
    return {};
}

ScriptPlayback::ScriptPlayback(const KeyModel& keyModel, const KeyScript& script)
    : m_playback(keyModel, startOf(script)), m_hasStateHandler(runsAtStart(script))
{
    for (int i = 0; i < script.steps.size(); ++i) {
        const ScriptStep& step = script.steps.at(i);
        m_playback.wait(step.at - m_playback.now());
        noteOrigins(-1);
        take(step);
        noteOrigins(i);
    }
    m_playback.wait(std::max(script.end - m_playback.now(), milliseconds::zero()));
    noteOrigins(-1);
}

bool ScriptPlayback::settle()
{
    const int firstStep = m_playback.steps().size();
    const auto isDue = [this](Input::Kind kind) { return m_playback.due(Input::of(kind)).has_value(); };
    bool isSettled = false;
    while (!isSettled && (isDue(Input::Kind::WindowEnd) || isDue(Input::Kind::FactoryResetTime) ||
                          !hasRepeatedLongPress(firstStep))) {
        // If no timer runs, the first repetition of a held key may still start one.
        const auto next = nextExpiry();
        m_playback.wait(next.value_or(m_playback.now() + Autorepeat::delay) - m_playback.now());
        isSettled = !next && !nextExpiry();
        noteOrigins(-1);
    }
    return isSettled;
}

void ScriptPlayback::take(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Press:
        return m_playback.press(*Alphabet::keyOf(step.text), step.keyboard);
    case ScriptStep::Kind::Release:
        return m_playback.release(*Alphabet::keyOf(step.text), step.keyboard);
    case ScriptStep::Kind::Record:
        return take(
            DaemonInputs::ofRecord(step.record.type, step.record.code, step.record.value, step.keyboard));
    case ScriptStep::Kind::State:
        // A state handler that fails announces nothing.
        return take(m_hasStateHandler ? DaemonInputs::ofState(step.text) : QVector<Input>());
    case ScriptStep::Kind::Service:
        if (step.service.service == ServiceChange::stateHandler) {
            m_hasStateHandler = step.service.condition == ServiceChange::Condition::Running;
        }
        return;
    case ScriptStep::Kind::Command:
        return take(DaemonInputs::ofCommand(step.command));
    case ScriptStep::Kind::Heading:
    case ScriptStep::Kind::Console:
        return;
    }
}

void ScriptPlayback::take(const QVector<Input>& inputs)
{
    for (const Input input : inputs) {
        m_playback.take(input);
    }
}

/// For all steps since the last call.
void ScriptPlayback::noteOrigins(int scriptStep)
{
    while (m_origins.size() < m_playback.steps().size()) {
        m_origins.append(scriptStep);
    }
}

std::optional<milliseconds> ScriptPlayback::nextExpiry() const
{
    std::optional<milliseconds> next;
    for (const auto kind :
         {Input::Kind::WindowEnd, Input::Kind::LongPressTime, Input::Kind::FactoryResetTime}) {
        const auto due = m_playback.due(Input::of(kind));
        if (due && (!next || *due < *next)) {
            next = due;
        }
    }
    return next;
}

/// Whether a long press has been completed twice since a step.
bool ScriptPlayback::hasRepeatedLongPress(int firstStep) const
{
    QVector<RowId> completed;
    for (int i = firstStep; i < m_playback.steps().size(); ++i) {
        for (const Effect& effect : m_playback.steps().at(i).effects) {
            if (effect.rule != Rule::LongPressCompletes) {
                continue;
            }
            if (completed.contains(effect.row)) {
                return true;
            }
            completed.append(effect.row);
        }
    }
    return false;
}

} // namespace checker

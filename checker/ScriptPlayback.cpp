// SPDX-License-Identifier: MIT
#include "checker/ScriptPlayback.h"

#include "simulator/script/KeyValue.h"
#include "simulator/script/ScriptWords.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

constexpr quint16 keyEventType = 1;

/// All codes without an identifier are the same key.
Key keyOfCode(quint16 code)
{
    const QString name = ls::KeyId::meta.key(code);
    return name.isEmpty() ? Alphabet::keys().last() : *Alphabet::keyOf(name);
}

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

std::optional<Input::Kind> kindOf(qint32 value)
{
    switch (value) {
    case KeyValue::released:
        return Input::Kind::Release;
    case KeyValue::pressed:
        return Input::Kind::Press;
    case KeyValue::repeated:
        return Input::Kind::Repeat;
    default:
        return std::nullopt;
    }
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
        return take(step.record, step.keyboard);
    case ScriptStep::Kind::State:
        return takeState(step.text);
    case ScriptStep::Kind::Service:
        if (step.service.service == ServiceChange::stateHandler) {
            m_hasStateHandler = step.service.condition == ServiceChange::Condition::Running;
        }
        return;
    case ScriptStep::Kind::Command:
        return take(step.command);
    case ScriptStep::Kind::Heading:
    case ScriptStep::Kind::Console:
        return;
    }
}

void ScriptPlayback::take(const RawRecord& record, int device)
{
    const auto kind = kindOf(record.value);
    if (record.type == keyEventType && kind) {
        m_playback.take(Input::of(*kind, keyOfCode(record.code), device));
    }
}

/// Only four commands affect keys. The daemon refuses unknown senders and keys.
void ScriptPlayback::take(const QVariantMap& command)
{
    namespace Id = ls::KeyboardHandlerCmdId;
    const QString name = command.value(ls::commandIdKey).toString();
    if (!ls::ServiceId::meta.contains(command.value(ls::senderIdKey).toString())) {
        return;
    }
    if (name == Id::StartTestMode) {
        m_playback.take(Input::of(Input::Kind::StartTest));
    } else if (name == Id::SimulateKey) {
        const int code = ls::KeyId::meta.value(command.value(ls::keyKey).toString(), -1);
        const int value = ls::KeyActionId::meta.value(command.value(ls::actionIdKey).toString(), -1);
        take({code == -1 ? quint16(0) : keyEventType, static_cast<quint16>(code), value}, 0);
    } else if (name == Id::SimulateModifier || name == Id::SimulateShortcut) {
        const auto kind =
            name == Id::SimulateModifier ? Input::Kind::SimulateCombination : Input::Kind::SimulateShortcut;
        const QStringList keys = command.value(ls::keysListKey).toStringList();
        if (!ScriptWords::checkKeys(keys).isEmpty()) {
            return;
        }
        for (const QString& key : keys) {
            m_playback.take(Input::of(kind, *Alphabet::keyOf(key)));
        }
    }
}

/// A state handler that fails announces nothing, and the daemon ignores unknown states.
void ScriptPlayback::takeState(const QString& name)
{
    const auto state = Alphabet::stateOf(name);
    if (state && m_hasStateHandler) {
        m_playback.take(Input::state(*state));
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

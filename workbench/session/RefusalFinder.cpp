// SPDX-License-Identifier: MIT
#include "workbench/session/RefusalFinder.h"

#include "simulator/script/KeyValue.h"
#include "vocabulary/Vocabulary.h"

#include <ls/MessageKeys.h>

#include <QRegularExpression>

#include <linux/input-event-codes.h>

#include <algorithm>

using namespace model;

namespace {

/// Log lines that never come, because the daemon differs from the model by some milliseconds, are forgotten.
constexpr int maxRefused = 10'000;

const QString undefinedReceiverLine =
    QStringLiteral("KeyboardManager::onEvent WARN: Invalid event, receiver service is undefined!");
const QString undefinedReceiverReason =
    QStringLiteral("The receiver of the action is \"Undefined\", so no service receives it.");

/// The refusal that `line` reports, without the action.
std::optional<entry::Refusal> refusalOf(const QString& line)
{
    static const QRegularExpression pattern(QStringLiteral(
        R"re(^KeyboardManager::onEvent WARN: Expected state is:  "(.*)" , but current state is:  "(.*)" !\?$)re"));
    if (line == undefinedReceiverLine) {
        return entry::Refusal{undefinedReceiverReason, {}, {}, {}};
    }
    const QRegularExpressionMatch match = pattern.match(line);
    return match.hasMatch() ? std::optional(entry::Refusal{line, match.captured(1), match.captured(2), {}})
                            : std::nullopt;
}

QVector<Input> keyEvent(const QString& key, int value, int device)
{
    const Key known = Alphabet::keyOf(key).value_or(*Alphabet::keyOf(vocabulary::undefined));
    switch (value) {
    case KeyValue::released:
        return {Input::release(known, device)};
    case KeyValue::pressed:
        return {Input::press(known, device)};
    case KeyValue::repeated:
        return {Input::repeat(known, device)};
    }
    return {};
}

/// A command with an unknown key simulates none of its keys.
QVector<Input> simulated(Input::Kind kind, const QStringList& keys)
{
    QVector<Input> inputs;
    for (const QString& name : keys) {
        const auto key = Alphabet::keyOf(name);
        if (!key || !Alphabet::isIdentified(*key)) {
            return {};
        }
        inputs.append(Input::of(kind, *key));
    }
    return inputs;
}

QVector<Input> inputsOf(const QVariantMap& command)
{
    const QString id = command.value(ls::commandIdKey).toString();
    const QStringList keys = command.value(ls::keysListKey).toStringList();
    if (id == ls::KeyboardHandlerCmdId::SimulateModifier) {
        return simulated(Input::Kind::SimulateCombination, keys);
    }
    if (id == ls::KeyboardHandlerCmdId::SimulateShortcut) {
        return simulated(Input::Kind::SimulateShortcut, keys);
    }
    if (id == ls::KeyboardHandlerCmdId::SimulateKey) {
        const int value = ls::KeyActionId::meta.value(command.value(ls::actionIdKey).toString(), -1);
        const QString key = command.value(ls::keyKey).toString();
        return ls::KeyId::meta.contains(key) ? keyEvent(key, value, 0) : QVector<Input>{};
    }
    return id == ls::KeyboardHandlerCmdId::StartTestMode ? QVector<Input>{Input::of(Input::Kind::StartTest)}
                                                         : QVector<Input>{};
}

} // namespace

RefusalFinder::RefusalFinder(const KeyLists& lists, const QString& state)
    : m_model(lists), m_playback(m_model, Alphabet::stateOf(state).value_or(State::Undefined))
{}

void RefusalFinder::noteRecord(milliseconds at, int keyboard, const RawRecord& record)
{
    if (record.type == EV_KEY) {
        take(at, keyEvent(ls::KeyId::meta.key(record.code), record.value, keyboard));
    }
}

void RefusalFinder::noteState(milliseconds at, const QString& state)
{
    if (const auto known = Alphabet::stateOf(state)) {
        take(at, {Input::state(*known)});
    }
}

void RefusalFinder::noteCommand(milliseconds at, const QVariantMap& command)
{
    take(at, inputsOf(command));
}

/// Of the commands of the console, only "C 7 ACTION KEY", in numbers, simulates a key.
void RefusalFinder::noteConsoleLine(milliseconds at, const QString& line)
{
    const QStringList words = line.simplified().split(QLatin1Char(' '));
    const QString simulateKey =
        QString::number(ls::KeyboardHandlerCmdId::meta.value(ls::KeyboardHandlerCmdId::SimulateKey));
    const bool isKey = words.size() == 4 && words.first().toUpper() == QLatin1String("C") &&
                       words.at(1) == simulateKey && ls::KeyId::meta.values().contains(words.last().toInt());
    take(at, isKey ? keyEvent(ls::KeyId::meta.key(words.last().toInt()), words.at(2).toInt(), 0)
                   : QVector<Input>{});
}

std::optional<entry::Refusal> RefusalFinder::find(milliseconds at, const QString& logLine)
{
    std::optional<entry::Refusal> refusal = refusalOf(logLine);
    if (!refusal) {
        return std::nullopt;
    }
    take(at, {});
    const std::optional<Refused> refused = next(*refusal);
    if (refused && refused->isAnnounced) {
        return std::nullopt;
    }
    refusal->action = refused ? m_model.lists().row(refused->row).eAction() : QString();
    // The daemon knows its state better, for example while the state handler fails.
    if (refusal->expected && refusal->current != Alphabet::nameOf(m_playback.situation().state)) {
        noteState(at, refusal->current);
    }
    return refusal;
}

void RefusalFinder::take(milliseconds at, const QVector<Input>& inputs)
{
    m_playback.wait(at - m_playback.now());
    for (const Input input : inputs) {
        m_playback.take(input);
    }
    collect();
}

void RefusalFinder::collect()
{
    for (const PlayedStep& step : m_playback.steps()) {
        for (const Effect& effect : step.effects) {
            const auto isAnnouncement = [&effect](const Effect& other) {
                return other.rule == Rule::Announces && other.row == effect.row;
            };
            if (effect.rule == Rule::RefusesState || effect.rule == Rule::DropsReceiver) {
                const bool isAnnounced =
                    std::any_of(step.effects.begin(), step.effects.end(), isAnnouncement);
                m_refused.append(
                    {effect.row, m_model.lists().statesOf(effect.row), int(effect.count), isAnnounced});
            }
        }
    }
    m_playback.forgetSteps();
    m_refused.remove(0, std::max(0, m_refused.size() - maxRefused));
}

/// The row of the next log line that fits `refusal`; those before it are forgotten.
std::optional<RefusalFinder::Refused> RefusalFinder::next(const entry::Refusal& refusal)
{
    const auto fits = [&](const Refused& refused) {
        const bool isDropped = m_model.rows().delivery(refused.row).isDropped;
        return refusal.expected ? !isDropped && refused.states.contains(*refusal.expected) : isDropped;
    };
    const auto found = std::find_if(m_refused.begin(), m_refused.end(), fits);
    if (found == m_refused.end()) {
        return std::nullopt;
    }
    const Refused refused = *found;
    m_refused.erase(m_refused.begin(), found);
    if (--m_refused.first().lines == 0) {
        m_refused.removeFirst();
    }
    return refused;
}

// SPDX-License-Identifier: MIT
#include "workbench/session/RefusalFinder.h"

#include <QRegularExpression>

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

} // namespace

RefusalFinder::RefusalFinder(const KeyLists& lists, const QString& state)
    : m_model(lists), m_playback(m_model, Alphabet::stateOf(state).value_or(State::Undefined))
{}

void RefusalFinder::take(milliseconds at, const QVector<Input>& inputs)
{
    m_playback.wait(at - m_playback.now());
    for (const Input input : inputs) {
        m_playback.take(input);
    }
    for (const PlayedStep& step : m_playback.steps()) {
        note(step.effects);
    }
    m_playback.forgetSteps();
    m_refused.remove(0, std::max(0, m_refused.size() - maxRefused));
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
    if (const auto state = Alphabet::stateOf(refusal->current)) {
        take(at, {Input::state(*state)});
    }
    return refusal;
}

void RefusalFinder::note(const QVector<Effect>& effects)
{
    for (int i = 0; i < effects.size(); ++i) {
        const Effect& effect = effects.at(i);
        if (effect.rule == Rule::RefusesState || effect.rule == Rule::DropsReceiver) {
            const Effect before = effects.value(i - 1);
            m_refused.append(
                {effect.row, effect.count, before.rule == Rule::Announces && before.row == effect.row});
        }
    }
}

/// The row of the next log line that fits `refusal`; those before it are forgotten.
std::optional<RefusalFinder::Refused> RefusalFinder::next(const entry::Refusal& refusal)
{
    const auto found = std::find_if(m_refused.begin(), m_refused.end(), [&](const Refused& refused) {
        const bool isDropped = m_model.rows().delivery(refused.row).isDropped;
        return isDropped != refusal.expected.has_value() &&
               (isDropped || m_model.lists().statesOf(refused.row).contains(*refusal.expected));
    });
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

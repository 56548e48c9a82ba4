// SPDX-License-Identifier: MIT
#include "model/Playback.h"

#include "keys/KeyRules.h"

#include <algorithm>
#include <tuple>

namespace model {

bool PlayedStep::has(Rule rule) const
{
    return std::any_of(effects.begin(), effects.end(),
                       [rule](const Effect& effect) { return effect.rule == rule; });
}

Playback::Playback(const KeyModel& keyModel, State state)
    : m_model(keyModel), m_situation(Situation::initial(state))
{
    m_timers[Window].input = Input::of(Input::Kind::WindowEnd);
    m_timers[LongPress].input = Input::of(Input::Kind::LongPressTime);
    m_timers[FactoryReset].input = Input::of(Input::Kind::FactoryResetTime);
}

void Playback::wait(milliseconds duration)
{
    const milliseconds end = m_now + duration;
    while (const Timer* timer = next(end)) {
        m_now = *timer->at;
        const Input input = timer->input;
        if (input.kind == Input::Kind::Repeat) {
            set(repeatClock(input.device), Autorepeat::period);
        }
        const Situation before = m_situation;
        step(input, PlayedStep::Origin::Time);
        if (input.kind == Input::Kind::Repeat && m_situation == before) {
            skipRepetitions(input.device, end);
        }
    }
    m_now = end;
}

void Playback::press(Key key, int device)
{
    const Input input = Input::press(key, device);
    if (m_down.contains(input)) {
        return;
    }
    m_down.append(input);
    m_timers[static_cast<size_t>(repeatClock(device))].input = Input::repeat(key, device);
    set(repeatClock(device), Autorepeat::delay);
    step(input, PlayedStep::Origin::Finger);
    wait(milliseconds::zero());
}

void Playback::release(Key key, int device)
{
    if (m_down.removeOne(Input::press(key, device))) {
        m_timers[static_cast<size_t>(repeatClock(device))].at.reset();
        step(Input::release(key, device), PlayedStep::Origin::Finger);
        wait(milliseconds::zero());
    }
}

void Playback::take(Input input)
{
    step(input, PlayedStep::Origin::Given);
    wait(milliseconds::zero());
}

std::optional<Playback::milliseconds> Playback::due(Input input) const
{
    const auto timer = std::find_if(m_timers.begin(), m_timers.end(),
                                    [input](const Timer& other) { return other.input == input; });
    return timer == m_timers.end() ? std::nullopt : timer->at;
}

void Playback::set(int clock, milliseconds duration)
{
    Timer& timer = m_timers[static_cast<size_t>(clock)];
    timer.at = m_now + duration;
    timer.order = ++m_order;
}

void Playback::setTimers(const Effects& effects)
{
    for (const Effect& effect : effects) {
        if (effect.rule == Rule::WindowOpens) {
            set(Window, KeyRules::singleKeyInterval);
        } else if (effect.rule == Rule::FactoryResetStarts) {
            set(FactoryReset, KeyRules::factoryResetHold);
        } else if (effect.rule == Rule::LongPressArms) {
            set(LongPress, milliseconds(m_model.rows().milliseconds(effect.row.index)));
        }
    }
    const auto clearUnless = [this](bool runs, Clock clock) {
        if (!runs) {
            m_timers[clock].at.reset();
        }
    };
    clearUnless(m_situation.windowRuns, Window);
    clearUnless(m_situation.longPressRuns, LongPress);
    clearUnless(m_situation.factoryResetRuns, FactoryReset);
}

/// Skips the repetitions after one without effect, because a key may be held for weeks: they have no effect
/// either until another timer expires.
void Playback::skipRepetitions(int device, milliseconds end)
{
    milliseconds until = end;
    for (size_t clock = Window; clock < FirstRepeat; ++clock) {
        until = std::min(until, m_timers[clock].at.value_or(end));
    }
    const auto count = (until - m_now) / Autorepeat::period;
    if (count > 1) {
        set(repeatClock(device), count * Autorepeat::period);
    }
}

/// The timer that falls due first; null if none does until `limit`.
Playback::Timer* Playback::next(milliseconds limit)
{
    Timer* first = nullptr;
    for (Timer& timer : m_timers) {
        if (timer.at && *timer.at <= limit &&
            (!first || std::tie(*timer.at, timer.order) < std::tie(*first->at, first->order))) {
            first = &timer;
        }
    }
    return first;
}

void Playback::step(Input input, PlayedStep::Origin origin)
{
    PlayedStep played;
    played.at = m_now;
    played.input = input;
    played.origin = origin;
    played.before = m_situation;
    Effects effects;
    m_situation = m_model.step(m_situation, input, effects);
    played.after = m_situation;
    setTimers(effects);
    const bool isPerceived = std::any_of(effects.cbegin(), effects.cend(), [](const Effect& effect) {
        return Rules::isPerceived(effect.rule);
    });
    // Most repetitions do nothing.
    if (input.kind != Input::Kind::Repeat || origin != PlayedStep::Origin::Time || isPerceived ||
        played.before != played.after) {
        record(played, effects);
    }
}

void Playback::record(PlayedStep played, const Effects& effects)
{
    const int index = m_steps.size();
    for (const Effect& effect : effects) {
        played.effects.append(effect);
        played.causes.append(m_causes.take(effect, index));
    }
    played.outputs = Outputs::of(effects, m_model.lists(), played.after.state);
    m_steps.append(played);
}

} // namespace model

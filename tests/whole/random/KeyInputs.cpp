// SPDX-License-Identifier: MIT
#include "tests/whole/random/KeyInputs.h"

#include "tests/whole/random/Commands.h"

#include <ls/MessageKeys.h>

#include <QSet>

#include <algorithm>
#include <array>
#include <optional>

#include <linux/input-event-codes.h>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds repeatDelay = 250ms;
constexpr milliseconds repeatPeriod = 33ms;
const QString undefined = QStringLiteral("Undefined");

/// The held keys of one device.
struct HeldKeys
{
    QSet<QString> down;
    QString repeating;
    std::optional<milliseconds> nextRepeat;
};

class Collector
{
public:
    explicit Collector(const KeyScript& script) : m_script(script), m_states(KeyInputs::statesOf(script)) {}

    QVector<KeyInput> collect()
    {
        for (; m_step < m_script.steps.size(); ++m_step) {
            repeatUntil(m_script.steps.at(m_step).at);
            take(m_script.steps.at(m_step));
        }
        repeatUntil(m_script.end);
        return m_inputs;
    }

private:
    void take(const ScriptStep& step)
    {
        if (step.kind == ScriptStep::Kind::Press || step.kind == ScriptStep::Kind::Release) {
            takeKey(step, m_held.at(static_cast<size_t>(step.keyboard)));
        } else if (step.kind == ScriptStep::Kind::Record && step.record.type == EV_KEY) {
            add(step.at, step.record.code, step.record.value);
        } else if (const auto command = Commands::of(step)) {
            if (Commands::succeeds(*command, ls::KeyboardHandlerCmdId::SimulateKey)) {
                add(step.at, ls::KeyId::meta.value(command->value(ls::keyKey).toString()),
                    ls::KeyActionId::meta.value(command->value(ls::actionIdKey).toString()));
            }
        }
    }

    void takeKey(const ScriptStep& step, HeldKeys& held)
    {
        const bool presses = step.kind == ScriptStep::Kind::Press;
        if (held.down.contains(step.text) == presses) {
            return;
        }
        presses ? void(held.down.insert(step.text)) : void(held.down.remove(step.text));
        held.repeating = step.text;
        held.nextRepeat = presses ? std::optional(step.at + repeatDelay) : std::nullopt;
        add(step.at, ls::KeyId::meta.value(step.text), presses ? 1 : 0);
    }

    void repeatUntil(milliseconds time)
    {
        for (;;) {
            const auto earlier = [](const HeldKeys& a, const HeldKeys& b) {
                return a.nextRepeat.value_or(milliseconds::max()) <
                       b.nextRepeat.value_or(milliseconds::max());
            };
            HeldKeys& next = *std::min_element(m_held.begin(), m_held.end(), earlier);
            if (!next.nextRepeat || *next.nextRepeat > time) {
                return;
            }
            const milliseconds at = *next.nextRepeat;
            next.nextRepeat = at + repeatPeriod;
            addAt({m_step, at}, at, ls::KeyId::meta.value(next.repeating), 2);
        }
    }

    void add(milliseconds at, int code, int value) { addAt(Place::ofStep(m_step), at, code, value); }

    void addAt(Place place, milliseconds at, int code, int value)
    {
        m_inputs.append({at, place, code, ls::KeyId::meta.key(code, undefined), value, m_states.at(m_step)});
    }

    const KeyScript& m_script;
    QStringList m_states;
    int m_step = 0;
    std::array<HeldKeys, 2> m_held;
    QVector<KeyInput> m_inputs;
};

} // namespace

QVector<KeyInput> KeyInputs::of(const KeyScript& script)
{
    return Collector(script).collect();
}

QStringList KeyInputs::statesOf(const KeyScript& script)
{
    const auto isState = [](const QString& name) { return ls::StateId::meta.contains(name); };
    QStringList states{isState(script.initialState) ? script.initialState : undefined};
    for (const ScriptStep& step : script.steps) {
        const bool changes = step.kind == ScriptStep::Kind::State && isState(step.text);
        states.append(changes ? step.text : states.last());
    }
    return states;
}

Place KeyInputs::timerPlace(const KeyScript& script, milliseconds at)
{
    const auto isEarlier = [](const ScriptStep& step, milliseconds time) { return step.at < time; };
    const auto first = std::lower_bound(script.steps.cbegin(), script.steps.cend(), at, isEarlier);
    return {static_cast<int>(first - script.steps.cbegin()), at};
}

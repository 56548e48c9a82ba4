// SPDX-License-Identifier: MIT
#include "model/EnvironmentStep.h"

#include "keys/KeyRules.h"
#include "model/Autorepeat.h"

#include <algorithm>
#include <iterator>

using std::chrono::milliseconds;

namespace model {

namespace {

constexpr quint32 ticksOf(milliseconds time)
{
    constexpr milliseconds rest = Environment::tick - milliseconds(1);
    return static_cast<quint32>((time + rest) / Environment::tick);
}

quint8 fingerOn(Input input)
{
    return static_cast<quint8>(1 + input.device * maxKeys + input.value);
}

void countDown(quint8& ticks)
{
    ticks = static_cast<quint8>(ticks == 0 ? 0 : ticks - 1);
}

/// Then the clock skips to the end of the long press, because whatever may happen meanwhile may happen now as
/// well: no other clock starts unless it ends the long press.
bool isOnlyLongPressTimed(const Surroundings& around)
{
    return around.longPressTicks > 0 && around.windowTicks == 0 && around.factoryResetTicks == 0 &&
           around.paceTicks == 0;
}

void remove(Surroundings& around, quint8 finger)
{
    auto* end = std::remove(std::begin(around.down), std::end(around.down), finger);
    std::fill(end, std::end(around.down), quint8(0));
}

} // namespace

EnvironmentStep::EnvironmentStep(const Environment& environment, const RowTables& rows)
    : m_environment(environment), m_rows(rows)
{
    for (const Key key : Alphabet::keys()) {
        if (!environment.panelKeysOnly || Alphabet::isOnPanel(key)) {
            m_keys.append(key);
        }
    }
    const auto addForAllKeys = [this](Inputs& inputs, Input::Kind kind) {
        for (const Key key : qAsConst(m_keys)) {
            if (kind <= Input::Kind::Repeat || Alphabet::isIdentified(key)) {
                inputs.append(Input::of(kind, key));
            }
        }
    };
    for (const auto kind : {Input::Kind::Press, Input::Kind::Release, Input::Kind::Repeat}) {
        addForAllKeys(m_anyKeys, kind);
    }
    if (environment.kind == Environment::Kind::Services) {
        addForAllKeys(m_services, Input::Kind::SimulateCombination);
        addForAllKeys(m_services, Input::Kind::SimulateShortcut);
    }
    if (environment.keyboardTest) {
        m_services.append(Input::of(Input::Kind::StartTest));
    }
    for (const State state : Alphabet::states()) {
        // A notification never makes the state unknown.
        if (environment.stateChanges && state != State::Undefined) {
            m_services.append(Input::state(state));
        }
    }
}

QVector<Node> EnvironmentStep::starts() const
{
    QVector<Node> nodes;
    for (const State state : m_environment.startStates) {
        nodes.append({Situation::initial(state), {}});
    }
    return nodes;
}

void EnvironmentStep::allow(const Node& node, Inputs& inputs) const
{
    inputs.clear();
    allowExpiries(node, inputs);
    if (isPerson()) {
        allowRepeats(node.surroundings, inputs);
    }
    if (isDigital() && !inputs.isEmpty()) {
        return; // what is due comes before anything else
    }
    if (isPerson()) {
        allowFingers(node.surroundings, inputs);
    } else {
        inputs.append(m_anyKeys.cbegin(), m_anyKeys.size());
    }
    inputs.append(m_services.cbegin(), m_services.size());
    if (isDigital()) {
        inputs.append(Input::tick(isOnlyLongPressTimed(node.surroundings)));
    }
}

void EnvironmentStep::follow(Node& node, Input input, const Effects& effects) const
{
    if (isPerson() && input.kind <= Input::Kind::Repeat) {
        moveFinger(node.surroundings, input);
    }
    if (isDigital()) {
        setClocks(node, effects);
        if (input.kind == Input::Kind::Tick) {
            tick(node, input.isLong());
        }
    }
}

/// Without clocks, the ticks are always 0 and every running timer may expire.
void EnvironmentStep::allowExpiries(const Node& node, Inputs& inputs) const
{
    const Situation& now = node.situation;
    const Surroundings& around = node.surroundings;
    if (now.longPressRuns && around.longPressTicks == 0) {
        inputs.append(Input::of(Input::Kind::LongPressTime));
    }
    if (now.windowRuns && around.windowTicks == 0) {
        inputs.append(Input::of(Input::Kind::WindowEnd));
    }
    if (now.factoryResetRuns && around.factoryResetTicks == 0) {
        inputs.append(Input::of(Input::Kind::FactoryResetTime));
    }
}

void EnvironmentStep::allowRepeats(const Surroundings& around, Inputs& inputs) const
{
    for (int device = 0; device < m_environment.devices; ++device) {
        if (around.repeating[device] != 0 && around.repeatTicks[device] == 0) {
            const auto key = static_cast<Key>(around.repeating[device] - 1);
            inputs.append(Input::repeat(key, device));
        }
    }
}

void EnvironmentStep::allowFingers(const Surroundings& around, Inputs& inputs) const
{
    if (around.paceTicks > 0) {
        return;
    }
    const auto* begin = std::begin(around.down);
    const auto* free = std::find(begin, std::end(around.down), quint8(0));
    const bool isFree = free - begin < m_environment.fingers;
    for (int device = 0; device < m_environment.devices; ++device) {
        for (const Key key : m_keys) {
            const bool isDown = std::find(begin, free, fingerOn(Input::press(key, device))) != free;
            if (isDown) {
                inputs.append(Input::release(key, device));
            } else if (isFree) {
                inputs.append(Input::press(key, device));
            }
        }
    }
}

void EnvironmentStep::moveFinger(Surroundings& around, Input input) const
{
    quint8& repeating = around.repeating[input.device];
    quint8& repeatTicks = around.repeatTicks[input.device];
    if (input.kind != Input::Kind::Repeat) {
        around.paceTicks = static_cast<quint8>(ticksOf(m_environment.pace));
    }
    if (input.kind == Input::Kind::Release) {
        remove(around, fingerOn(input));
        repeating = repeatTicks = 0;
        return;
    }
    if (input.kind == Input::Kind::Press) {
        remove(around, 0);
        *std::find(std::begin(around.down), std::end(around.down), quint8(0)) = fingerOn(input);
        // Free fingers come last.
        std::sort(std::begin(around.down), std::end(around.down),
                  [](quint8 a, quint8 b) { return a != 0 && (b == 0 || a < b); });
    }
    // Repetitions of keys without a long press have no effect.
    const bool counts = m_rows.longPressOf(input.key()) >= 0;
    repeating = static_cast<quint8>(counts ? 1 + input.value : 0);
    repeatTicks = static_cast<quint8>(counts && isDigital() ? ticksOf(Autorepeat::delay) : 0);
}

void EnvironmentStep::setClocks(Node& node, const Effects& effects) const
{
    Surroundings& around = node.surroundings;
    for (const Effect& effect : effects) {
        if (effect.rule == Rule::WindowOpens) {
            around.windowTicks = static_cast<quint8>(ticksOf(KeyRules::singleKeyInterval));
        } else if (effect.rule == Rule::FactoryResetStarts) {
            around.factoryResetTicks = static_cast<quint8>(ticksOf(KeyRules::factoryResetHold));
        } else if (effect.rule == Rule::LongPressArms) {
            around.longPressTicks = ticksOf(milliseconds(m_rows.milliseconds(effect.row.index)));
        }
    }
    // Stopped clocks are 0, so that nodes with equal behaviour are equal.
    const Situation& now = node.situation;
    around.windowTicks = now.windowRuns ? around.windowTicks : quint8(0);
    around.factoryResetTicks = now.factoryResetRuns ? around.factoryResetTicks : quint8(0);
    around.longPressTicks = now.longPressRuns ? around.longPressTicks : 0;
}

void EnvironmentStep::tick(Node& node, bool isLong) const
{
    Surroundings& around = node.surroundings;
    countDown(around.windowTicks);
    countDown(around.factoryResetTicks);
    countDown(around.paceTicks);
    for (quint8& ticks : around.repeatTicks) {
        countDown(ticks);
    }
    around.longPressTicks = isLong || around.longPressTicks == 0 ? 0 : around.longPressTicks - 1;
}

} // namespace model

// SPDX-License-Identifier: MIT
#pragma once

#include "model/Autorepeat.h"
#include "model/Causes.h"
#include "model/Environment.h"
#include "model/KeyModel.h"
#include "model/Output.h"

#include <array>
#include <chrono>
#include <optional>

namespace model {

/// One input, with its effects, causes and outputs.
struct PlayedStep
{
    enum class Origin {
        /// A timer expired or a held key was repeated.
        Time,
        /// A finger pressed or released a key.
        Finger,
        /// A single record or a command.
        Given,
    };

    /// Since the start.
    std::chrono::milliseconds at{0};
    Input input;
    Origin origin = Origin::Time;
    Situation before;
    Situation after;
    QVector<Effect> effects;
    /// For each effect, the indices of the earlier steps that caused it; -1 is the start.
    QVector<QVector<int>> causes;
    QVector<Output> outputs;

    /// Whether one of the effects is by this rule.
    bool has(Rule rule) const;
};

/// Plays inputs on the model with exact times. Timers expire and held keys repeat by themselves.
class Playback
{
public:
    using milliseconds = std::chrono::milliseconds;

    /// Starts in `state`. `keyModel` must outlive the playback.
    Playback(const KeyModel& keyModel, State state);

    milliseconds now() const { return m_now; }
    const Situation& situation() const { return m_situation; }
    /// All steps but repetitions of held keys without effect on the situation and without output.
    const QVector<PlayedStep>& steps() const { return m_steps; }

    /// Forgets the steps so far. Causes then no longer name steps.
    void forgetSteps() { m_steps.clear(); }

    /// Advances the clock; what falls due meanwhile happens at its time.
    void wait(milliseconds duration);
    /// Moves a key on a device, which repeats it while it is held. Pressing a key that is down and releasing
    /// one that is up do nothing.
    void press(Key key, int device = 0);
    void release(Key key, int device = 0);
    /// Passes a single input to the daemon, without autorepeat.
    void take(Input input);
    /// When `input`, an expiry or a repetition, falls due; nothing if its timer does not run.
    std::optional<milliseconds> due(Input input) const;

private:
    struct Timer
    {
        std::optional<milliseconds> at;
        /// Among simultaneous timers, the one started first comes first.
        quint64 order = 0;
        Input input;
    };
    enum Clock {
        Window,
        LongPress,
        FactoryReset,
        FirstRepeat,
        clockCount = FirstRepeat + Environment::deviceCount
    };

    static int repeatClock(int device) { return FirstRepeat + device; }
    void set(int clock, milliseconds duration);
    void setTimers(const Effects& effects);
    void skipRepetitions(int device, milliseconds end);
    Timer* next(milliseconds limit);
    void step(Input input, PlayedStep::Origin origin);
    void record(PlayedStep played, const Effects& effects);

    const KeyModel& m_model;
    Situation m_situation;
    milliseconds m_now{0};
    std::array<Timer, clockCount> m_timers;
    quint64 m_order = 0;
    QVector<Input> m_down; // as they were pressed
    Causes m_causes;
    QVector<PlayedStep> m_steps;
};

} // namespace model

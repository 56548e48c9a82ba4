// SPDX-License-Identifier: MIT
#pragma once

#include "model/Effect.h"
#include "model/Environment.h"
#include "model/Input.h"
#include "model/RowTables.h"
#include "model/Situation.h"

#include <QVarLengthArray>
#include <QVector>

namespace model {

/// The state of an environment.
struct Surroundings
{
    /// The keys that fingers hold down: ascending, then 0 for each free finger.
    quint8 down[Environment::maxFingers] = {0, 0, 0, 0};
    /// The key that each device repeats; 0 for none.
    quint8 repeating[Environment::deviceCount] = {0, 0};
    /// The ticks until the next repetition, the end of the window and the end of the hold of FactoryReset.
    quint8 repeatTicks[Environment::deviceCount] = {0, 0};
    quint8 windowTicks = 0;
    quint8 factoryResetTicks = 0;
    /// The ticks until a finger may move.
    quint8 paceTicks = 0;
    quint8 spare[1] = {0};
    quint32 longPressTicks = 0;
};

/// A node of a search: the daemon and its environment.
struct Node
{
    Situation situation;
    Surroundings surroundings;
};

using Inputs = QVarLengthArray<Input, 128>;

/// The environment's part of a search: which inputs may come, and how they change the environment.
class EnvironmentStep
{
public:
    EnvironmentStep(const Environment& environment, const RowTables& rows);

    QVector<Node> starts() const;
    /// Replaces `inputs` with the inputs that may come next, keys before changes of state and commands.
    void allow(const Node& node, Inputs& inputs) const;
    /// Updates the surroundings after `input` and its effects. `node` has the situation after the input.
    void follow(Node& node, Input input, const Effects& effects) const;

private:
    void allowExpiries(const Node& node, Inputs& inputs) const;
    void allowRepeats(const Surroundings& around, Inputs& inputs) const;
    void allowFingers(const Surroundings& around, Inputs& inputs) const;
    void moveFinger(Surroundings& around, Input input) const;
    void setClocks(Node& node, const Effects& effects) const;
    void tick(Node& node, bool isLong) const;
    bool isDigital() const { return m_environment.time == Environment::Time::Digital; }
    bool isPerson() const { return m_environment.kind == Environment::Kind::Person; }

    Environment m_environment;
    const RowTables& m_rows;
    QVector<Key> m_keys; // that are pressed
    Inputs m_anyKeys;    // the key events of any input
    Inputs m_services;   // state changes and commands
};

} // namespace model

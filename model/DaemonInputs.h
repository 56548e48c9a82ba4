// SPDX-License-Identifier: MIT
/// Which inputs of the model the daemon's inputs are. Inputs that do not affect keys, or that the daemon
/// refuses, have no counterpart.
#pragma once

#include "model/Input.h"

#include <QVariantMap>
#include <QVector>

namespace model::DaemonInputs {

/// The type of the records of keys.
constexpr quint16 keyEventType = 1; // EV_KEY

/// A record of an input device.
QVector<Input> ofRecord(quint16 type, quint16 code, qint32 value, int device);
/// A state that the state handler announces.
QVector<Input> ofState(const QString& state);
/// A command that arrives on the bus.
QVector<Input> ofCommand(const QVariantMap& command);
/// A line of the debug console.
QVector<Input> ofConsoleLine(const QString& line);

} // namespace model::DaemonInputs

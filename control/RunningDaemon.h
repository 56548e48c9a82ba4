// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

namespace control {

/// The daemon as the files of the system show it, without the bus.
namespace RunningDaemon {

/// The processes of all daemons, by their ids.
QVector<qint64> processes();
/// Whether a daemon runs.
bool isThere();
/// The services that the daemon waits for when it starts, as far as they are not ready.
QStringList awaitedServices();

} // namespace RunningDaemon

} // namespace control

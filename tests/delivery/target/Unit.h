// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Controls the units of this system with systemctl.
namespace Unit {

inline const QString daemon = QStringLiteral("keyboard-handler.service");
inline const QString stateHandler = QStringLiteral("state-handler.service");
inline const QString speechDaemon = QStringLiteral("speechd.service");
inline const QString panel = QStringLiteral("embosser-panel.service");

/// Runs systemctl with these arguments; returns whether it succeeded.
bool control(const QStringList& arguments);
bool start(const QString& unit);
bool stop(const QString& unit);
/// Restarts the unit, regardless of its start limit.
bool restart(const QString& unit);

/// A property of the unit; empty if it does not exist.
QString property(const QString& unit, const QString& name);
bool isActive(const QString& unit);
/// The process id of the unit's main process; 0 if there is none.
int mainProcess(const QString& unit);
/// The processor time of all processes of the unit since its start, in microseconds.
qint64 processorTimeUs(const QString& unit);

} // namespace Unit

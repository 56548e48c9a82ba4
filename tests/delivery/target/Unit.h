// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// The units of this system, as systemctl shows and handles them.
namespace Unit {

inline const QString daemon = QStringLiteral("keyboard-handler.service");
inline const QString stateHandler = QStringLiteral("state-handler.service");
inline const QString speechDaemon = QStringLiteral("speechd.service");
inline const QString panel = QStringLiteral("embosser-panel.service");

/// Runs systemctl with these arguments and waits for its end; whether it ended well.
bool control(const QStringList& arguments);
bool start(const QString& unit);
bool stop(const QString& unit);
/// Starts the unit anew, whatever happened to it before.
bool restart(const QString& unit);

/// A property of the unit; empty when it has no such property.
QString property(const QString& unit, const QString& name);
bool isActive(const QString& unit);
/// The process id of the unit's main process; 0 without one.
int mainProcess(const QString& unit);
/// The processor time that all processes of the unit have taken since its start, in microseconds.
qint64 processorTimeUs(const QString& unit);

} // namespace Unit

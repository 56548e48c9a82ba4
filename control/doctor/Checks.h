// SPDX-License-Identifier: MIT
#pragma once

#include "control/doctor/Diagnosis.h"
#include "control/doctor/Facts.h"

namespace control {

/// The checks of `doctor`, each with at least one result.
namespace Checks {

/// What makes a change effective.
inline const QString restart = QStringLiteral("systemctl restart keyboard-handler");
/// The first few of many: "A, B and 3 others".
QString fewOf(const QStringList& texts);

/// All of them, from the user and the bus to the key lists.
Diagnoses all(const Facts& facts);

/// The rights of the user, the bus, the unit and the daemon.
Diagnoses ofDaemon(const Facts& facts);
/// The input devices, and the rows that they cannot complete.
Diagnoses ofPanel(const Facts& facts);
/// The key lists.
Diagnoses ofLists(const Facts& facts);
/// The services around the daemon, the operating state and the log.
Diagnoses ofSurroundings(const Facts& facts);

} // namespace Checks

} // namespace control

// SPDX-License-Identifier: MIT
#pragma once

#include "control/doctor/Facts.h"

namespace control {

/// Looks at this system without changing it. The daemon gets one question, which its main thread answers and
/// which is not a command: a command would change the sender of the next announcement.
namespace Probes {

/// Everything. `daemons` are the processes of all daemons, `missing` the services that they wait for.
Facts facts(const QString& prefix, const QVector<qint64>& daemons, const QStringList& missing);

UserFacts user();
BusFacts bus(const QString& prefix);
UnitFacts unit();
ProcessFacts process(qint64 id);
/// When the daemon declared itself ready; invalid if it has not.
QDateTime readyTime();
/// `ignored` are processes that may read the panel.
PanelFacts panel(const QVector<qint64>& ignored);
ListFacts lists();
JournalFacts journal(qint64 process);

} // namespace Probes

} // namespace control

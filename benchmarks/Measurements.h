// SPDX-License-Identifier: MIT
/// What is measured of the programs. They take turns, so that whatever else this machine does falls on all of
/// them; the figures are those of `Figures`, by the names of the programs.
#pragma once

#include "benchmarks/MeasuredProgram.h"

#include <QJsonObject>
#include <QMap>

#include <memory>
#include <vector>

namespace Measurements {

using Programs = std::vector<std::unique_ptr<MeasuredProgram>>;
using Figures = QMap<QString, QJsonObject>;

/// How much is measured.
struct Extent
{
    int starts;
    int keys;
    int bursts;
    int burstKeys;
    int idleSeconds;
    int waits;
    int fewCountedKeys;
    int manyCountedKeys;
};

/// Starts and ends the programs.
void start(Programs& programs, const Extent& extent, Figures& figures);
/// Presses single keys in running programs, which must announce them with the same content.
void keys(Programs& programs, const Extent& extent, Figures& figures);
/// Leaves running programs alone for a while.
void idleness(const Programs& programs, const Extent& extent, Figures& figures);
/// Starts the daemon before the services that it waits for, and leaves it waiting for a while; then these
/// become ready.
void waiting(MeasuredProgram& daemon, const Extent& extent, Figures& figures);
/// Looks at the memory of running programs.
void memory(const Programs& programs, Figures& figures);
/// Presses many keys at once in running programs.
void bursts(Programs& programs, const Extent& extent, Figures& figures);
/// Starts and ends the programs under callgrind.
void instructions(const Programs& programs, const Extent& extent, Figures& figures);

} // namespace Measurements

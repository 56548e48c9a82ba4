// SPDX-License-Identifier: MIT
/// The measurements of the programs. Programs take turns, so that other activity of the machine affects all
/// of them. `Figures` maps the names of the programs to their figures.
#pragma once

#include "benchmarks/MeasuredProgram.h"

#include <QJsonObject>
#include <QMap>

#include <memory>
#include <vector>

namespace Measurements {

using Programs = std::vector<std::unique_ptr<MeasuredProgram>>;
using Figures = QMap<QString, QJsonObject>;

/// The numbers of repetitions.
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

void start(Programs& programs, const Extent& extent, Figures& figures);
/// Presses single keys in running programs, which must announce them with the same content.
void keys(Programs& programs, const Extent& extent, Figures& figures);
/// Counts the wake-ups of idle programs.
void idleness(const Programs& programs, const Extent& extent, Figures& figures);
/// Measures the daemon while it waits for services, and its start once they are ready.
void waiting(MeasuredProgram& daemon, const Extent& extent, Figures& figures);
void memory(const Programs& programs, Figures& figures);
/// Presses many keys at once in running programs.
void bursts(Programs& programs, const Extent& extent, Figures& figures);
/// Counts instructions with callgrind.
void instructions(const Programs& programs, const Extent& extent, Figures& figures);

} // namespace Measurements

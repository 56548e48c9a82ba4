// SPDX-License-Identifier: MIT
#pragma once

#include "control/Status.h"
#include "control/doctor/Diagnosis.h"

#include <QJsonObject>
#include <QStringList>

namespace control {

/// The results of all checks, for people and for programs.
namespace Report {

/// Increases with each change that a program which reads the JSON must know. New members do not count.
constexpr int version = 1;

/// A line for each result, with indented lines for the remedy and the document, and a summary. They may
/// contain hostile texts of the files and of the bus.
QStringList toLines(const Diagnoses& diagnoses);
QJsonObject toObject(const Diagnoses& diagnoses);

/// `Failed` for a failure, `Doubtful` for a warning or an unknown result, `Done` if all checks are ok.
Status statusOf(const Diagnoses& diagnoses);

} // namespace Report

} // namespace control

// SPDX-License-Identifier: MIT
#pragma once

#include "control/record/Recording.h"
#include "simulator/script/KeyScript.h"

#include <QVector>

namespace control {

/// The steps of a key script that report `records`, which begin when no key is down. Their times count from
/// `origin`. A key whose repetitions are those of the kernel's defaults is pressed and released; a device
/// with other ones, or with keys without a name, has all its records written, repetitions included.
QVector<ScriptStep> keySteps(const QVector<InputRecord>& records, std::chrono::microseconds origin,
                             std::chrono::microseconds end);

/// The step that reports one record, with the name of its key if it has one.
ScriptStep keyStep(const InputRecord& record, std::chrono::microseconds origin);

} // namespace control

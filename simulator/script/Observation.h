// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QVector>

#include <chrono>

/// An action of the daemon, written as in the `expect` lines of a key script: "announce SingleKey
/// UserMenu KeyboardHandler Up".
struct Observation
{
    /// Since the start of the script.
    std::chrono::milliseconds at{0};
    QString text;
};

using Observations = QVector<Observation>;

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/DeviceOptions.h"

#include <QString>

#include <optional>

class QCoreApplication;

/// What the simulator's arguments ask for.
struct CommandLine
{
    /// The script to play; empty for none.
    QString script;
    DeviceOptions device;
    /// The file to record to; empty for none.
    QString recording;
    /// Whether the device is kept and served to browsers, and at which port; 0 is any.
    bool serve = false;
    quint16 port = 0;

    /// Nothing, when the arguments ask for what cannot be done; standard error tells then. Asked for help, it
    /// ends the program.
    static std::optional<CommandLine> read(const QCoreApplication& application);
};

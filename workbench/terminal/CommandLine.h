// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/DeviceOptions.h"

#include <QString>

#include <optional>

class QCoreApplication;

/// The parsed arguments of the simulator.
struct CommandLine
{
    /// The script to play; empty for none.
    QString script;
    DeviceOptions device;
    /// The file to record to; empty for none.
    QString recording;
    /// Whether to keep the device and serve it to browsers, and the port; 0 chooses a free one.
    bool serve = false;
    quint16 port = 0;

    /// Parses the arguments; prints an error and returns nothing if they are invalid. Exits after printing
    /// requested help.
    static std::optional<CommandLine> read(const QCoreApplication& application);
};

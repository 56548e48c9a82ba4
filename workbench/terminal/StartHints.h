// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Hints that the program prints at the start of a device.
namespace StartHints {

/// A shell command that accesses the bus at `address`.
QString bus(const QString& address);

} // namespace StartHints

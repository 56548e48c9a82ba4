// SPDX-License-Identifier: MIT
#pragma once

#include "control/doctor/Facts.h"

/// Facts for tests of the checks.
namespace MadeUpDevice {

/// A device without any fault, looked at by root, with the key lists in `folder`, which are not checked.
control::Facts healthy(const QString& folder);

} // namespace MadeUpDevice

// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

struct sd_bus_message;

/// Values of bus messages, as returned by Qt's bus library.
namespace MessageValue {

/// The first argument of `message`; invalid if there is none.
QVariant first(sd_bus_message* message);

} // namespace MessageValue

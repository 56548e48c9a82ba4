// SPDX-License-Identifier: MIT
#pragma once

#include <QVariant>

struct sd_bus_message;

/// Values of messages on the bus, as Qt's bus library would hand them out.
namespace MessageValue {

/// The first argument of `message`; invalid when there is none.
QVariant first(sd_bus_message* message);

} // namespace MessageValue

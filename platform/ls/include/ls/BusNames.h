// SPDX-License-Identifier: MIT
/// Names on the bus. `KEYBOARD_HANDLER_BUS_PREFIX` is a string literal that the build defines.
#pragma once

#include <QString>

namespace ls {

/// Every service has its object here.
inline const QString busPath = QStringLiteral("/");

/// Bus name, and at the same time interface name, of the service with the identifier `serviceId`.
inline QString busName(const QString& serviceId)
{
    return QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".") + serviceId;
}

} // namespace ls

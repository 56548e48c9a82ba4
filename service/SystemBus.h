// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>

/// Opens the connection of this process to the system bus. The connection delivers messages in order and
/// never stops reading, however many are queued. If opening fails, `isConnected()` of the result is false.
QDBusConnection openSystemBus();

// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>

/// Opens the connection of this process to the system bus, so that it keeps messages in their order and goes
/// on reading however much comes. Without a bus, the connection that is returned is not connected.
QDBusConnection openSystemBus();

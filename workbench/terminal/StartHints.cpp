// SPDX-License-Identifier: MIT
#include "workbench/terminal/StartHints.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>

QString StartHints::bus(const QString& address)
{
    return QStringLiteral("The device's bus, until it restarts; for example, from another terminal:\n"
                          "DBUS_SYSTEM_BUS_ADDRESS='%1' busctl --system call %2 / %2 process 'a{sv}' "
                          "2 commandId s GetLastKey senderId s ServiceTool")
        .arg(address, ls::busName(ls::ServiceId::KeyboardHandler));
}

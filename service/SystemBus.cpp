// SPDX-License-Identifier: MIT
#include "service/SystemBus.h"

#include <QDebug>
#include <QLibrary>

#include <limits>
#include <system_error>
#include <thread>

namespace {

/// When the messages that wait for the main thread hold 63 MiB or 4096 descriptors, the bus library stops
/// reading. Qt reads on another thread than the one that then makes room, from which it cannot start to read
/// again: the daemon would be deaf from then on. Without these limits those of the process hold, memory and
/// descriptors.
void liftLimits(const QDBusConnection& bus)
{
    using SetLimit = void (*)(void* connection, long limit);
    QLibrary library(QStringLiteral("dbus-1"), 3);
    for (const char* name :
         {"dbus_connection_set_max_received_size", "dbus_connection_set_max_received_unix_fds"}) {
        const auto setLimit = reinterpret_cast<SetLimit>(library.resolve(name));
        if (setLimit != nullptr && bus.isConnected()) {
            setLimit(bus.internalPointer(), std::numeric_limits<long>::max());
        }
    }
}

} // namespace

QDBusConnection openSystemBus()
{
    // Of a connection that the main thread opens, Qt holds the messages back until the event loop runs, and
    // may then deliver newer ones first: a change of the state could be lost while the daemon starts. A
    // connection that another thread opens delivers in order from the beginning.
    try {
        std::thread([] { QDBusConnection::systemBus(); }).join();
    } catch (const std::system_error& error) {
        qCritical() << "No thread to open the system-bus on:" << error.what();
    }
    const QDBusConnection bus = QDBusConnection::systemBus();
    liftLimits(bus);
    return bus;
}

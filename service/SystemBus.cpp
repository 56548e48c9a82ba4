// SPDX-License-Identifier: MIT
#include "service/SystemBus.h"

#include <QDebug>
#include <QLibrary>

#include <limits>
#include <system_error>
#include <thread>

namespace {

/// The bus library stops reading when queued messages hold 63 MiB or 4096 descriptors. Qt empties the queue
/// on another thread than the one that reads, and never resumes reading: the daemon would stay deaf. Once the
/// limits are lifted, the limits of the process on memory and descriptors apply.
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
    // If the main thread opens the connection, Qt queues messages until the event loop runs, and may then
    // deliver newer ones first: a state change during start-up could be lost. A connection opened by another
    // thread delivers in order from the start.
    try {
        std::thread([] { QDBusConnection::systemBus(); }).join();
    } catch (const std::system_error& error) {
        qCritical() << "No thread to open the system-bus on:" << error.what();
    }
    const QDBusConnection bus = QDBusConnection::systemBus();
    liftLimits(bus);
    return bus;
}

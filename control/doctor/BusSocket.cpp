// SPDX-License-Identifier: MIT
#include "control/doctor/BusSocket.h"

#include <cerrno>
#include <cstring>

#include <systemd/sd-bus.h>

using std::chrono::microseconds;
using std::chrono::steady_clock;

namespace control {

namespace {

using BusSocket::Client;

constexpr char defaultAddress[] = "unix:path=/run/dbus/system_bus_socket";

QString addressOf(sd_bus* bus)
{
    const QString prefix = QStringLiteral("unix:path=");
    const char* text = nullptr;
    const QString address = sd_bus_get_address(bus, &text) < 0 ? QString() : QString::fromLocal8Bit(text);
    return address.startsWith(prefix) ? address.mid(prefix.size()).section(QLatin1Char(','), 0, 0) : address;
}

/// Starts to connect. Returns 0, or the number of the system's error.
int begin(Client& client)
{
    const QByteArray address = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    sd_bus* bus = nullptr;
    if (const int created = sd_bus_new(&bus); created < 0) {
        return -created;
    }
    client.reset(bus);
    for (const int result :
         {sd_bus_set_address(bus, address.isEmpty() ? defaultAddress : address.constData()),
          sd_bus_set_bus_client(bus, 1), sd_bus_set_monitor(bus, 1),
          sd_bus_set_method_call_timeout(bus, uint64_t(microseconds(BusSocket::timeout).count())),
          sd_bus_start(bus)}) {
        if (result < 0) {
            return -result;
        }
    }
    return 0;
}

/// Waits for the first reply of the bus. Returns 0, or the number of the system's error.
int awaitWelcome(sd_bus* bus)
{
    const auto end = steady_clock::now() + BusSocket::timeout;
    int ready = 0;
    while ((ready = sd_bus_is_ready(bus)) == 0) {
        const int done = sd_bus_process(bus, nullptr);
        const auto rest = std::chrono::duration_cast<microseconds>(end - steady_clock::now());
        if (rest.count() <= 0) {
            return ETIMEDOUT;
        }
        const int waited = done == 0 ? sd_bus_wait(bus, uint64_t(rest.count())) : 0;
        if (done < 0 || (waited < 0 && waited != -EINTR)) {
            return done < 0 ? -done : -waited;
        }
    }
    return ready < 0 ? -ready : 0;
}

} // namespace

void BusSocket::Close::operator()(sd_bus* bus) const
{
    sd_bus_close_unref(bus);
}

QString BusSocket::join(Client& client)
{
    int error = begin(client);
    if (error == 0) {
        error = awaitWelcome(client.get());
    }
    if (error == 0) {
        return {};
    }
    const QString address = addressOf(client.get());
    // A bus that hangs does not take clients out of its queue, which then is full.
    return error == ETIMEDOUT || error == EAGAIN
               ? QStringLiteral("%1 accepts clients, but does not respond: the bus hangs").arg(address)
               : QStringLiteral("%1: %2").arg(address, QString::fromLocal8Bit(std::strerror(error)));
}

QString BusSocket::fault()
{
    Client client;
    return join(client);
}

} // namespace control

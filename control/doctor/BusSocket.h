// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <chrono>
#include <memory>

struct sd_bus;

namespace control {

/// The system bus before this process is connected to it. The bus library of Qt waits without a limit for a
/// bus that hangs.
namespace BusSocket {

/// The longest time to wait for the bus itself, which answers at once if it works.
constexpr std::chrono::seconds timeout{5};

struct Close
{
    void operator()(sd_bus* bus) const;
};

/// A connection that does not belong to Qt.
using Client = std::unique_ptr<sd_bus, Close>;

/// Connects `client`, which may call methods and later `BecomeMonitor`. Returns why the bus cannot be used;
/// empty if it has welcomed the client. Waits at most `timeout`.
QString join(Client& client);
/// The same with a client that leaves the bus at once.
QString fault();

} // namespace BusSocket

} // namespace control

// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace control {

/// The socket of the system bus. The bus library waits without a limit for a bus that hangs.
namespace BusSocket {

/// Why the bus cannot be used; empty if it responds to a client, or if its address is not that of a socket
/// file. Waits at most 5 s.
QString fault();

} // namespace BusSocket

} // namespace control

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"
#include "simulator/device/DeviceOptions.h"

class DeviceFolder;

/// The system bus of one simulated device: a message bus with the rules of a system bus and with the
/// policy that is installed together with the daemon.
class BusDaemon
{
public:
    /// Starts the bus and waits until it listens; returns a sentence about what went wrong, or an empty
    /// text.
    QString start(const DeviceFolder& folder, DeviceOptions::NamePolicy namePolicy);
    void stop();

    /// For `QDBusConnection::connectToBus`.
    QString address() const { return m_address; }

private:
    ChildProcess m_process;
    QString m_address;
};

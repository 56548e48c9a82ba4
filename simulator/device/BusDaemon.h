// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"
#include "simulator/device/DeviceOptions.h"

#include <QObject>

class DeviceFolder;

/// The system bus of one simulated device: a message bus with the rules of a system bus and the daemon's
/// installed policy.
class BusDaemon : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Starts the bus and waits until it listens. Returns a sentence about the error, or an empty string.
    QString start(const DeviceFolder& folder, DeviceOptions::NamePolicy namePolicy);
    void stop() { m_process.end(); }

    /// 0 while the bus is not running.
    qint64 processId() const { return m_process.processId(); }
    /// For `QDBusConnection::connectToBus`.
    QString address() const { return m_address; }

Q_SIGNALS:
    /// The started bus has ended.
    void ended();

private:
    ChildProcess m_process;
    QString m_address;
};

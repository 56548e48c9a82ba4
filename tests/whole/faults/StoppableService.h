// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"

/// One of the services around the daemon, as a separate process that can be stopped.
class StoppableService
{
public:
    ~StoppableService() { resume(); }

    /// Starts the service `name`, "state-handler" or "speechd", and waits until it is on the bus; false on
    /// failure.
    bool start(const QString& name, const QString& busAddress);
    /// Makes the state handler announce a change, immediately or when it is resumed.
    void changeState(const QString& state);
    /// The speech daemon's lines about spoken sentences since the last call.
    QList<QByteArray> takeSpoken();

    /// False if the process is not running.
    bool stop();
    void resume();

private:
    ChildProcess m_process;
};

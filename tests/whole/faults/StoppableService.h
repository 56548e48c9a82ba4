// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"

/// One of the services around the daemon, as a process of its own that can be stopped.
class StoppableService
{
public:
    ~StoppableService() { resume(); }

    /// Starts the service `name`, "state-handler" or "speechd", and waits until it is on the bus; false when
    /// it does not come there.
    bool start(const QString& name, const QString& busAddress);
    /// Has the state handler announce a change, at once or when it goes on.
    void changeState(const QString& state);
    /// The lines in which the speech daemon has told what it spoke, since the last call.
    QList<QByteArray> takeSpoken();

    /// False when it does not run.
    bool stop();
    void resume();

private:
    ChildProcess m_process;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

/// What the entry point waits at until the services that the daemon depends on are ready. The flag is
/// read and written under the mutex only.
struct StartupGate
{
    QMutex mutex;
    QWaitCondition opened;
    bool servicesReady = false;
};

/// The gate of this process.
StartupGate& startupGate();

/// The thread that opens the start-up gate once every dependency has been seen ready in one pass. Destruction
/// waits for its end.
class SystemCheck : public QThread
{
    Q_OBJECT

public:
    ~SystemCheck() override { wait(); }

protected:
    void run() override;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QThread>
#include <QWaitCondition>

/// A gate that opens when the services that the daemon depends on are ready; the entry point waits for it.
/// The flag is read and written under the mutex only.
struct StartupGate
{
    QMutex mutex;
    QWaitCondition opened;
    bool servicesReady = false;
};

/// The gate of this process.
StartupGate& startupGate();

/// The thread that opens the start-up gate once a single pass has found every dependency ready. The
/// destructor waits for the thread to end.
class SystemCheck : public QThread
{
    Q_OBJECT

public:
    ~SystemCheck() override { wait(); }

protected:
    void run() override;
};

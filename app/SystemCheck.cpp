// SPDX-License-Identifier: MIT
#include "app/SystemCheck.h"

#include <servicewatcher/ServiceWatcher.h>

#include <QMutexLocker>
#include <QStringList>

namespace {

bool areDependenciesReady()
{
    static const QStringList dependencies{QStringLiteral("state-handler"), QStringLiteral("speechd")};
    bool ready = true;
    for (const QString& name : dependencies) {
        ready = ServiceWatcher::isReady(name) && ready;
    }
    return ready;
}

} // namespace

StartupGate& startupGate()
{
    static StartupGate gate;
    return gate;
}

void SystemCheck::run()
{
    StartupGate& gate = startupGate();
    QMutexLocker locker(&gate.mutex);
    // Not a busy loop: the watcher waits up to a second before it answers "no".
    while (!areDependenciesReady()) {
    }
    gate.servicesReady = true;
    gate.opened.wakeAll();
    locker.unlock();
    quit();
}

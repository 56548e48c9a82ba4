// SPDX-License-Identifier: MIT
// A stand-in for a service that the daemon waits for, "state-handler" or "speechd", which declares its
// readiness like the real service, or for one that only listens, such as "UserMenu".
#include "simulator/device/SpeechDaemonStandIn.h"
#include "tests/delivery/target/StateControl.h"

#include <ls/BusNames.h>
#include <servicewatcher/ServiceWatcher.h>

#include <QCoreApplication>

namespace {

const QString busAddress = QStringLiteral("unix:path=/run/dbus/system_bus_socket");
const QString controlPath = QStringLiteral("/control");

int run(const QString& name, bool appeared)
{
    if (!appeared) {
        qCritical("%s cannot join the bus.", qPrintable(name));
        return 1;
    }
    return QCoreApplication::exec();
}

int runWatched(const QString& name, bool appeared)
{
    if (appeared) {
        ServiceWatcher::setReady(name, true);
    }
    return run(name, appeared);
}

int runStateHandler(const QString& name)
{
    StateHandlerStandIn stateHandler;
    StateControl control(stateHandler);
    QDBusConnection bus = QDBusConnection::systemBus();
    return runWatched(
        name, bus.registerObject(controlPath, &control, QDBusConnection::ExportScriptableInvokables) &&
                  bus.registerService(QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".StateControl")) &&
                  stateHandler.appear(busAddress));
}

int runSpeechDaemon(const QString& name)
{
    SpeechDaemonStandIn speech(QDBusConnection::systemBus());
    return runWatched(name, speech.appear());
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QString name = QCoreApplication::arguments().value(1);
    if (name == QLatin1String("speechd") || name == QLatin1String("state-handler")) {
        ServiceWatcher::setReady(name, false);
        return name == QLatin1String("speechd") ? runSpeechDaemon(name) : runStateHandler(name);
    }
    return run(name, QDBusConnection::systemBus().registerService(ls::busName(name)));
}

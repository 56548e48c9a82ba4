// SPDX-License-Identifier: MIT
// A stand-in for a service that the daemon waits for, "state-handler" or "speechd". It declares its readiness
// like the real service.
#include "simulator/device/SpeechDaemonStandIn.h"
#include "tests/delivery/target/StateControl.h"

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
    ServiceWatcher::setReady(name, true);
    return QCoreApplication::exec();
}

int runStateHandler(const QString& name)
{
    StateHandlerStandIn stateHandler;
    StateControl control(stateHandler);
    QDBusConnection bus = QDBusConnection::systemBus();
    return run(name, bus.registerObject(controlPath, &control, QDBusConnection::ExportScriptableInvokables) &&
                         bus.registerService(QStringLiteral(KEYBOARD_HANDLER_BUS_PREFIX ".StateControl")) &&
                         stateHandler.appear(busAddress));
}

int runSpeechDaemon(const QString& name)
{
    SpeechDaemonStandIn speech(QDBusConnection::systemBus());
    return run(name, speech.appear());
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QString name = QCoreApplication::arguments().value(1);
    ServiceWatcher::setReady(name, false);
    return name == QLatin1String("speechd") ? runSpeechDaemon(name) : runStateHandler(name);
}

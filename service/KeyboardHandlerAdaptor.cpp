// SPDX-License-Identifier: MIT
#include "service/KeyboardHandlerAdaptor.h"

#include "service/BusValue.h"
#include "service/KeyboardHandler.h"
#include "service/SystemBus.h"

#include <ls/BusNames.h>
#include <ls/Identifiers.h>
#include <vantre/DBusArgumentUnpack.h>

#include <QDBusConnection>
#include <QDBusError>
#include <QDebug>

KeyboardHandlerAdaptor::KeyboardHandlerAdaptor(KeyboardHandler* handler)
    : QDBusAbstractAdaptor(handler), m_handler(handler)
{
    setAutoRelaySignals(true);
    registerOnBus();
}

QVariantMap KeyboardHandlerAdaptor::process(const QVariantMap& command)
{
    const QVariantMap unpacked = libvantre::dbusArgumentUnpack(command).toMap();
    return toBusMap(m_handler->process(unpacked));
}

void KeyboardHandlerAdaptor::registerOnBus()
{
    QDBusConnection bus = openSystemBus();
    if (!bus.isConnected()) {
        qCritical() << "Unable to connect to system-bus!";
        return;
    }
    if (!bus.registerObject(ls::busPath, m_handler, QDBusConnection::ExportAdaptors)) {
        qCritical() << "Unable to register object on system-bus!";
        return;
    }
    const QString name = ls::busName(ls::ServiceId::KeyboardHandler);
    if (bus.registerService(name)) {
        qDebug() << "Successfully registered on DBus:" << name;
        return;
    }
    const QString message = bus.lastError().message();
    if (message.isEmpty()) {
        qCritical() << "Unable to register Service: Service-name already in use.";
    } else {
        qCritical() << "Unable to register Service: " << message;
    }
}

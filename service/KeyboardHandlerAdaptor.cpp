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
#include <QEvent>

namespace {

/// The calls that the interface has are a handful.
constexpr int mostKindsOfCalls = 64;

} // namespace

KeyboardHandlerAdaptor::KeyboardHandlerAdaptor(KeyboardHandler* handler)
    : QDBusAbstractAdaptor(handler), m_handler(handler)
{
    setAutoRelaySignals(true);
    registerOnBus();
}

// Qt notes how it takes each kind of call (a name and the types of its arguments) in a dynamic property of
// the adaptor, which has no others. It does so for calls that there are not as well, and forgets none: a
// caller who thinks of ever new ones would fill the memory.
bool KeyboardHandlerAdaptor::event(QEvent* event)
{
    if (event->type() == QEvent::DynamicPropertyChange && ++m_kindsOfCalls > mostKindsOfCalls) {
        forgetKindsOfCalls();
    }
    return QDBusAbstractAdaptor::event(event);
}

QVariantMap KeyboardHandlerAdaptor::process(const QVariantMap& command)
{
    const QVariantMap unpacked = libvantre::dbusArgumentUnpack(command).toMap();
    return toBusMap(m_handler->process(unpacked));
}

void KeyboardHandlerAdaptor::onBusLost()
{
    qCritical() << "The connection to the system bus is lost.";
}

void KeyboardHandlerAdaptor::forgetKindsOfCalls()
{
    m_kindsOfCalls = 0;
    const QList<QByteArray> names = dynamicPropertyNames();
    for (const QByteArray& name : names) {
        setProperty(name.constData(), QVariant());
    }
}

void KeyboardHandlerAdaptor::registerOnBus()
{
    QDBusConnection bus = openSystemBus();
    if (!bus.isConnected()) {
        qCritical() << "Unable to connect to system-bus!";
        return;
    }
    // Sent by the bus library itself, whatever ended the connection.
    bus.connect(QString(), QString(), QStringLiteral("org.freedesktop.DBus.Local"),
                QStringLiteral("Disconnected"), this, SLOT(onBusLost()));
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

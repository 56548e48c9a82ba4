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

/// The interface itself has only a handful of methods.
constexpr int maxCachedLookups = 64;

} // namespace

KeyboardHandlerAdaptor::KeyboardHandlerAdaptor(KeyboardHandler* handler)
    : QDBusAbstractAdaptor(handler), m_handler(handler)
{
    setAutoRelaySignals(true);
    registerOnBus();
}

// Qt caches a lookup for every method signature it sees, valid or not, and never evicts one: a caller that
// invents signatures would exhaust the memory. The lookups are the adaptor's only dynamic properties.
bool KeyboardHandlerAdaptor::event(QEvent* event)
{
    if (event->type() == QEvent::DynamicPropertyChange && ++m_cachedLookups > maxCachedLookups) {
        clearLookupCache();
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

void KeyboardHandlerAdaptor::clearLookupCache()
{
    m_cachedLookups = 0;
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
    // The bus library itself sends this signal, whatever ended the connection.
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

// SPDX-License-Identifier: MIT
#pragma once

#include <ls/IDBusAdaptor.h>

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

class KeyboardHandler;

/// The daemon on the system bus: hands calls of `process` to the service object and relays its
/// notifications as signals.
class KeyboardHandlerAdaptor : public QDBusAbstractAdaptor, public ls::IDBusAdaptor
{
    Q_OBJECT
    Q_INTERFACES(ls::IDBusAdaptor)
    Q_CLASSINFO("D-Bus Interface", KEYBOARD_HANDLER_BUS_PREFIX ".KeyboardHandler")

public:
    /// Registers `handler`, which is also the parent, on the system bus. A failure is logged, but not
    /// retried.
    explicit KeyboardHandlerAdaptor(KeyboardHandler* handler);

    bool event(QEvent* event) override;

public Q_SLOTS:
    QVariantMap process(const QVariantMap& command) override;

Q_SIGNALS:
    void notification(const QVariantMap& notification) override;

private Q_SLOTS:
    void onBusLost();

private:
    void registerOnBus();
    void clearLookupCache();

    KeyboardHandler* m_handler;
    int m_cachedLookups = 0;
};

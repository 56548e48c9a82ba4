// SPDX-License-Identifier: MIT
#pragma once

#include <QVariantMap>
#include <QtPlugin>

namespace ls {

/// Exchanges the message maps of a service; implemented by the service object and by its bus adaptor.
class IDBusAdaptor
{
public:
    virtual ~IDBusAdaptor() = default;

    /// Executes a command map and returns its response map.
    virtual QVariantMap process(const QVariantMap& command) = 0;
    /// Announces a notification map; a signal in the implementing classes.
    virtual void notification(const QVariantMap& notification) = 0;
};

} // namespace ls

Q_DECLARE_INTERFACE(ls::IDBusAdaptor, KEYBOARD_HANDLER_BUS_PREFIX ".IDBusAdaptor")

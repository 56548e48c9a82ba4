// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QString>

namespace ls {

class DBusService;

/// The proxies of the services that this process talks to, one for each. For the main thread only.
class DBusServiceStore
{
public:
    /// The process-wide store; never null, never destroyed.
    static DBusServiceStore* instance();

    /// Creates the proxy of the service `serviceId`; does nothing if the proxy exists.
    void registerService(const QString& serviceId);
    /// The proxy, owned by the store; null for a service that was not registered.
    DBusService* getService(const QString& serviceId) const;

private:
    QHash<QString, DBusService*> m_services;
};

} // namespace ls

// SPDX-License-Identifier: MIT
#include <ls/DBusServiceStore.h>

#include <ls/DBusService.h>

namespace ls {

DBusServiceStore* DBusServiceStore::instance()
{
    static auto* const store = new DBusServiceStore;
    return store;
}

void DBusServiceStore::registerService(const QString& serviceId)
{
    if (!m_services.contains(serviceId)) {
        m_services.insert(serviceId, new DBusService(serviceId));
    }
}

DBusService* DBusServiceStore::getService(const QString& serviceId) const
{
    return m_services.value(serviceId);
}

} // namespace ls

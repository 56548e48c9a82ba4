// SPDX-License-Identifier: MIT
#include "simulator/device/SpeechDaemonStandIn.h"

#include <ls/BusNames.h>

namespace {

QString serviceName()
{
    return ls::busName(QStringLiteral("SpeechDaemon"));
}

} // namespace

SpeechDaemonStandIn::SpeechDaemonStandIn(const QDBusConnection& bus, QObject* parent)
    : QObject(parent), m_bus(bus)
{}

bool SpeechDaemonStandIn::appear()
{
    return m_bus.registerObject(ls::busPath, this, QDBusConnection::ExportScriptableInvokables) &&
           m_bus.registerService(serviceName());
}

void SpeechDaemonStandIn::disappear()
{
    m_bus.unregisterService(serviceName());
    m_bus.unregisterObject(ls::busPath);
}

void SpeechDaemonStandIn::speakFromId(const QVariantMap& request)
{
    if (!m_isSilent) {
        Q_EMIT spoken(request);
    }
}

void SpeechDaemonStandIn::cancelAll()
{
    if (!m_isSilent) {
        Q_EMIT cancelled();
    }
}

// SPDX-License-Identifier: MIT
#include "device/Embosser.h"

#include <configurationmanager/ConfigurationManager.h>
#include <vantre/DBusArgumentUnpack.h>
#include <vantre/Singleton.h>

namespace detail {

using Configuration = libvantre::Singleton<libconfigurationmanager::detail::ConfigurationManager>;

Embosser::Embosser(QObject* parent) : QObject(parent)
{
    // Deliberate: start-up must not wait for the configuration service.
    Configuration::instance()->setCheckConnection(false);
}

bool Embosser::isOrvane()
{
    return libvantre::dbusArgumentUnpack(QVariant(Configuration::instance()->isOrvane())).toBool();
}

} // namespace detail

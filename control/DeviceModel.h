// SPDX-License-Identifier: MIT
#pragma once

#include <configurationmanager/ConfigurationManager.h>

namespace control::DeviceModel {

/// Whether this embosser is an Orvane, as its configuration file says.
inline bool isOrvane()
{
    libconfigurationmanager::detail::ConfigurationManager configuration;
    configuration.setCheckConnection(false); // reads the file only
    return configuration.isOrvane();
}

} // namespace control::DeviceModel

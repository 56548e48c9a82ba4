// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace libconfigurationmanager::detail {

/// Client of the device's configuration.
class ConfigurationManager : public QObject
{
    Q_OBJECT

public:
    explicit ConfigurationManager(QObject* parent = nullptr);

    /// Whether a query first asks the bus for the configuration service, which blocks for a round trip
    /// (the default). With false, only the configuration file is read.
    void setCheckConnection(bool check);

    /// Whether this embosser is the Orvane model. Read from the configuration file on every call; false
    /// (the Pellit model) when the file is missing, unreadable or names another model, or when the
    /// connection is checked and the configuration service is absent.
    bool isOrvane() const;

private:
    bool m_checkConnection = true;
};

} // namespace libconfigurationmanager::detail

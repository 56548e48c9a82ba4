// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/DeviceOptions.h"

struct KeyScript;

/// The configuration of a session's device at its next start.
class DeviceSetup
{
public:
    /// The changes of a restart; an empty member changes nothing.
    struct Changes
    {
        QString model;
        /// File name to content, for the changed key lists.
        QMap<QString, QByteArray> keyLists;
        /// Whether to return to the installed key lists before applying `keyLists`.
        bool defaultKeyLists = false;
        QString state;
    };

    /// The key lists of `options` are the installed ones.
    /// Whether these are the key lists that are installed with the daemon.
    static bool areInstalled(const QMap<QString, QByteArray>& keyLists);

    explicit DeviceSetup(const DeviceOptions& options);

    /// A sentence if `changes` contains an unknown name; empty otherwise.
    static QString check(const Changes& changes);
    /// `changes` must have passed `check`.
    void apply(const Changes& changes);
    /// Applies the header of `script`.
    void apply(const KeyScript& script);
    void setState(const QString& state) { m_options.state = state; }
    void setService(const ServiceChange& change);

    /// The model, the state, all key lists and the services.
    const DeviceOptions& options() const { return m_options; }

private:
    DeviceOptions m_options;
    QMap<QString, QByteArray> m_installedKeyLists;
};

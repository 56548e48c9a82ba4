// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/DeviceOptions.h"

struct KeyScript;

/// What the device of a session is made of at its next start, and how that changes.
class DeviceSetup
{
public:
    /// What a restart changes; an empty member leaves things as they are.
    struct Changes
    {
        QString model;
        /// File name to content, for those of the three key lists that change.
        QMap<QString, QByteArray> keyLists;
        /// The installed key lists replace the present ones, before those of `keyLists` do.
        bool defaultKeyLists = false;
        QString state;
    };

    /// The key lists of `options` are the installed ones.
    explicit DeviceSetup(const DeviceOptions& options);

    /// A sentence when `changes` names something unknown; empty otherwise.
    static QString faultOf(const Changes& changes);
    /// `changes` has no fault.
    void apply(const Changes& changes);
    /// The device that the header of `script` describes.
    void apply(const KeyScript& script);
    void setState(const QString& state) { m_options.state = state; }
    void setService(const ServiceChange& change);

    /// The model, the state, all key lists, and the services.
    const DeviceOptions& options() const { return m_options; }

private:
    DeviceOptions m_options;
    QMap<QString, QByteArray> m_installedKeyLists;
};

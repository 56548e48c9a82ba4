// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/DeviceOptions.h"

#include <QTemporaryDir>

/// The files of one simulated device, in a temporary folder that is removed with this object.
class DeviceFolder
{
public:
    explicit DeviceFolder(const DeviceOptions& options);

    /// A sentence about the first error; empty if there was none.
    QString errorString() const { return m_error; }

    /// Becomes /dev/input of the device.
    QString inputFolder() const { return path(QStringLiteral("input")); }
    /// Becomes /var/lib of the device.
    QString libraryFolder() const { return path(QStringLiteral("lib")); }
    /// Becomes /run of the device.
    QString runFolder() const { return path(QStringLiteral("run")); }

    /// The FIFO of the keyboard 0 or 1, whether or not it exists.
    QString keyboardFile(int keyboard) const;
    QString keyList(const QString& fileName) const;
    QString busSocket() const { return path(QStringLiteral("run/dbus/system_bus_socket")); }
    QString busConfiguration() const { return path(QStringLiteral("bus.conf")); }
    QString busLog() const { return path(QStringLiteral("bus.log")); }
    QString busPolicy() const { return path(QStringLiteral("bus-policy.conf")); }

    /// Whether the service `name` has declared itself ready.
    bool isReady(const QString& name) const;
    void setReady(const QString& name, bool ready);

private:
    QString path(const QString& name) const { return m_folder.filePath(name); }
    void makeFolders();
    void makeKeyboards(const DeviceOptions& options);
    void makeKeyLists(const DeviceOptions& options);
    void makeConfiguration(const QString& model);
    void write(const QString& file, const QByteArray& content);
    void fail(const QString& sentence);

    QTemporaryDir m_folder;
    QString m_error;
};

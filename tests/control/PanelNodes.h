// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/DeviceFolder.h"
#include "simulator/panel/ByteSink.h"
#include "simulator/panel/Panel.h"

#include <QObject>
#include <QStringList>
#include <QTemporaryDir>

#include <array>

/// Input nodes for a program next to the daemon, with the same records. A FIFO has one reader, so these are a
/// separate pair.
class PanelNodes : public QObject
{
    Q_OBJECT

public:
    /// Aborts the program if the nodes cannot be made.
    PanelNodes();

    /// From now on, what the panel writes to the daemon's nodes is written to these as well.
    void follow(Panel& panel);
    QString node(int keyboard) const { return m_folder.filePath(QStringLiteral("event%1").arg(keyboard)); }
    /// Arguments of bubblewrap with which a program sees the files of a device, and these nodes.
    QStringList viewOf(const DeviceFolder& device) const;

private:
    QTemporaryDir m_folder;
    std::array<ByteSink, 2> m_sinks;
};

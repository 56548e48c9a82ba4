// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/ChildProcess.h"
#include "simulator/device/DeviceFolder.h"

#include <QTemporaryDir>

#include <thread>

/// A program, such as `keyboard-handlerctl`, next to a measured program. A FIFO has one reader, so the
/// watcher has its own input devices, to which the same records are written. All functions throw if the
/// watcher misbehaves.
class Watcher
{
public:
    /// Starts this command on the device of `folder`, whose bus has this address, and waits until
    /// it reads its input devices.
    Watcher(const QStringList& command, const DeviceFolder& folder, const QString& busAddress);
    ~Watcher();

    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    /// Writes a report of the first input device on a separate thread: a FIFO makes its writer wait for the
    /// reader, and the kernel's input devices do not.
    void write(const QByteArray& report);

private:
    void awaitReader();
    void feed();

    QTemporaryDir m_folder;
    int m_inputs[2] = {-1, -1};
    ChildProcess m_process;
    // A pipe, because a mutex would make the measuring thread wait for the feeder, which has no priority.
    int m_reports[2] = {-1, -1};
    std::thread m_feeder;
};

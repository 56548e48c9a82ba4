// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/ByteSink.h"
#include "simulator/script/KeyDevice.h"
#include "simulator/script/KeyScript.h"

#include <QObject>

#include <array>

/// The front panel: two input devices whose records go to two FIFOs.
class Panel : public QObject
{
    Q_OBJECT

public:
    static constexpr int deviceCount = 2;

    explicit Panel(QObject* parent = nullptr);

    /// Connects the device number `device` (0 or 1) with the FIFO at `path`; false when that is not there.
    /// The records of an unconnected device are lost.
    bool open(int device, const QString& path);

    /// `key` is an identifier of `ls::KeyId`.
    void press(int device, const QString& key);
    void release(int device, const QString& key);
    /// Writes `record` and the report that ends it.
    void record(int device, const RawRecord& record);
    /// Writes bytes that need not be whole records.
    void writeRaw(int device, const QByteArray& bytes);

    /// How many bytes of `device` wait for the reader to make room.
    int pending(int device) const;

Q_SIGNALS:
    /// `record` was written to the device, repetitions and reports' ends included.
    void written(int device, const RawRecord& record);

private:
    struct Device
    {
        KeyDevice keys;
        ByteSink sink;
    };

    Device& at(int device) { return m_devices.at(size_t(device)); }

    std::array<Device, deviceCount> m_devices;
};

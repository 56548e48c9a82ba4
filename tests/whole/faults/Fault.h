// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Dice.h"

#include <QStringList>
#include <QVector>

struct DeviceOptions;
class FaultTest;

/// Something that goes wrong around a running daemon, in a way that a seed decides. What returns a text
/// returns what is wrong with the daemon, or why the fault did not come about; an empty one when all is well.
class Fault
{
public:
    explicit Fault(quint64 seed) : dice(seed) {}
    virtual ~Fault() = default;

    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;

    /// Says of what the device is made, before there is one.
    virtual void furnish(DeviceOptions& /*options*/) {}
    /// Is there before the daemon is; the device's services run.
    virtual QString precede(FaultTest& /*test*/) { return {}; }
    /// Comes about while the daemon is at work, goes away again, and does both several times.
    virtual QString begin(FaultTest& test) = 0;
    virtual QString end(FaultTest& /*test*/) { return {}; }

    /// The input devices whose keys are announced at once while the fault lasts.
    virtual QVector<int> freeDevices() const { return {0, 1}; }
    /// By how much the daemon's memory may be more after another time than after the first one. Two more
    /// times have 2000 presses: a leak of 128 bytes for each press is noticed, or of 128 KiB for each time.
    /// What leaks less is for RandomHourTest and tools/soak.
    virtual qint64 slackKiB() const { return usualSlackKiB; }
    /// Patterns of the lines that the daemon logs because of the fault; it logs each of them, and nothing
    /// else.
    virtual QStringList log() const { return {}; }

    static constexpr qint64 usualSlackKiB = 256;
    /// Where hundreds of keys or lines wait in a queue: the heap keeps what the longest one took.
    static constexpr qint64 queueSlackKiB = 2 * 1024;

protected:
    Dice dice;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/random/Dice.h"

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
    /// How much more memory the heap of the daemon may keep back for itself afterwards; what one round would
    /// leak should be more.
    virtual qint64 slackKiB() const { return 2 * 1024; }
    /// Patterns of the lines that the daemon logs because of the fault; it logs each of them, and nothing
    /// else.
    virtual QStringList log() const { return {}; }

protected:
    Dice dice;
};

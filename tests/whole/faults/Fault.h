// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Dice.h"

#include <QStringList>
#include <QVector>

struct DeviceOptions;
class FaultTest;

/// A fault around a running daemon, randomised by a seed. Functions that return a string return a sentence
/// about a failure of the daemon or of the fault itself, or an empty string.
class Fault
{
public:
    explicit Fault(quint64 seed) : dice(seed) {}
    virtual ~Fault() = default;

    Fault(const Fault&) = delete;
    Fault& operator=(const Fault&) = delete;

    /// Sets the options of the device before its creation.
    virtual void configure(DeviceOptions& /*options*/) {}
    /// Called before the daemon starts; the device's services are running.
    virtual QString precede(FaultTest& /*test*/) { return {}; }
    /// Starts and ends the fault; called several times while the daemon is running.
    virtual QString begin(FaultTest& test) = 0;
    virtual QString end(FaultTest& /*test*/) { return {}; }

    /// The input devices whose keys are announced without delay during the fault.
    virtual QVector<int> freeDevices() const { return {0, 1}; }
    /// The allowed growth of the daemon's memory from the first to a later round. Two more rounds have 2000
    /// presses, so this detects leaks of 128 bytes a press or 128 KiB a round. RandomHourTest and tools/soak
    /// detect smaller leaks.
    virtual qint64 slackKiB() const { return defaultSlackKiB; }
    /// Patterns of the lines that the daemon must log because of the fault. Other lines are failures.
    virtual QStringList log() const { return {}; }

    static constexpr qint64 defaultSlackKiB = 256;
    /// For faults that queue hundreds of keys or lines, whose memory the heap keeps.
    static constexpr qint64 queueSlackKiB = 2 * 1024;

protected:
    Dice dice;
};

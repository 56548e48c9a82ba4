// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/system/SystemTest.h"

#include <functional>

/// The base of tests that do the real daemon harm, or try to.
class SystemAbuseTest : public SystemTest
{
    Q_OBJECT

protected:
    /// Runs `attack` to warm the daemon up, then several times more; returns what is wrong with the daemon
    /// afterwards: it is gone, deaf to keys or to commands, or holds more memory or descriptors. Empty when
    /// all is well. When the attack returns, the daemon must be done with it. `slackKiB` is what the heap may
    /// keep back for itself; a leak of an attack's own size should be far more.
    QString damageOf(const std::function<void()>& attack, qint64 slackKiB = 2048);

    /// What is wrong after an attack that cannot be repeated: keys or commands do not work; empty if they do.
    QString faults();

    /// The memory that the daemon has to itself.
    qint64 memoryKiB();
    /// Empty while that has grown by no more than allowed.
    QString growthFault(qint64 memoryBeforeKiB, qint64 allowedKiB);
    /// How many file descriptors the daemon has open.
    int descriptors();
    /// How many more than allowed it still has after many later commands; 0 or less for none.
    int descriptorsAbove(int allowed);
    /// Whether the daemon, left alone, leaves the processor alone.
    bool idles();

private:
    QString faultsAfter(const std::function<void()>& attack, int times);
    int processorMs();
};

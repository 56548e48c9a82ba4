// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/faults/Fault.h"
#include "tests/whole/faults/FaultSeeds.h"
#include "tests/whole/random/Dice.h"
#include "tests/whole/system/SystemAbuseTest.h"

/// The base class of fault tests. After a fault, the daemon must run, handle the next key as fast as before,
/// use no more memory and descriptors, and have logged the expected lines.
///
/// Each test function runs once for each of the FaultSeeds.
class FaultTest : public SystemAbuseTest
{
    Q_OBJECT

protected:
    /// Starts and ends the fault several times, verifies the daemon as described above, and prints the
    /// figures.
    void verifyResilience(const Fault& fault);

    /// Taps `count` random keys of these, each on a random keyboard.
    void tapAny(const QStringList& keys, int count);
    /// Presses Menu; returns the receiver of its announcement, or an empty string if the daemon ends.
    QString receiverOfMenu(int keyboard = 0);
    /// Presses Menu until it is announced to `receiver`; false if the daemon ends first.
    bool awaitReceiver(const QString& receiver);
    /// Presses Up in Idle and waits for its announcement, with which the router forgets all keys; false if
    /// the daemon ends first.
    bool awaitLoneKey();
    /// The median time from press to announcement on these keyboards, in milliseconds; negative if the daemon
    /// ends first.
    double latency(const QVector<int>& keyboards = {0, 1}, int presses = 25);

    /// Verifies that `disturbedMs` is of the same order of magnitude as `usualMs`.
    static void verifyLatency(double usualMs, double disturbedMs);
    /// Verifies that the daemon's memory and descriptors have not grown.
    void verifyNoGrowth(qint64 memoryBeforeKiB, int descriptorsBefore, qint64 slackKiB);
    /// Waits until the daemon has logged a line for each pattern, and verifies that it has logged no others.
    void verifyLog(const QStringList& patterns) const;

    /// The random choices of this run; initialised with its seed.
    Dice dice{0};

private Q_SLOTS:
    void initTestCase_data() { FaultSeeds::addRows(); }
    void initTestCase();
    void init();

private:
    struct Figures;

    void verifyRound(const Fault& fault, Figures& figures);
    void verifyRounds(const Fault& fault);
};

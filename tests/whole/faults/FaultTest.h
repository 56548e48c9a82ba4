// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/faults/Fault.h"
#include "tests/whole/faults/FaultSeeds.h"
#include "tests/whole/system/SystemAbuseTest.h"

#include <optional>

/// The base class of fault tests. After a fault, the daemon must run, handle the next key as fast as before,
/// use no more memory and descriptors, and have logged the expected lines.
///
/// Each test function runs once for each of the FaultSeeds.
class FaultTest : public SystemAbuseTest
{
    Q_OBJECT

public:
    using SystemAbuseTest::memoryKiB;
    using SystemTest::actions;
    using SystemTest::awaitAction;
    using SystemTest::awaitLog;
    using SystemTest::command;
    using SystemTest::device;
    using SystemTest::log;
    using SystemTest::tap;

    /// Presses Menu; returns the receiver of its announcement, or an empty string if the daemon ends.
    QString receiverOfMenu(int inputDevice = 0);
    /// Presses Menu until it is announced to `receiver`.
    bool awaitReceiver(const QString& receiver);
    /// Presses Up in Idle and waits for its announcement, with which the router forgets all keys.
    bool awaitLoneKey();
    /// Waits until `condition` is true.
    static bool await(const std::function<bool()>& condition);

protected:
    /// The seed of this run.
    static quint64 seed() { return FaultSeeds::current(); }
    /// Starts and ends `fault` several times and prints the figures. Returns a sentence about the first
    /// failure, or an empty string.
    QString damageFrom(Fault& fault);
    /// The median time from press to announcement on these devices, in milliseconds; nothing if a key is not
    /// announced.
    std::optional<double> latency(const QVector<int>& inputDevices = {0, 1}, int presses = 25);
    /// A sentence if the latency `disturbed` is of another order of magnitude than `usual`; empty otherwise.
    static QString slowness(double usual, double disturbed);
    /// A sentence if memory or descriptors have grown; empty otherwise.
    QString growth(qint64 memoryBeforeKiB, int descriptorsBefore, qint64 slackKiB);
    /// A sentence if the daemon's log does not consist of lines with these patterns; empty otherwise.
    QString logFault(const QStringList& patterns) const;

private Q_SLOTS:
    void initTestCase_data() { FaultSeeds::addRows(); }
    void initTestCase();

private:
    struct Round;

    QString round(Fault& fault, Round& figures);
    QString rounds(Fault& fault);
};

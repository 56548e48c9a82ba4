// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/faults/Fault.h"
#include "tests/whole/faults/FaultSeeds.h"
#include "tests/whole/system/SystemAbuseTest.h"

#include <optional>

/// The base of tests of what the daemon promises whatever goes wrong around it: it lives, the next key works
/// as fast as before, memory and descriptors are flat, and the log says what it should.
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

    /// Presses Menu; returns who it is announced to, empty when the daemon ends instead.
    QString receiverOfMenu(int inputDevice = 0);
    /// Presses Menu until it is announced to `receiver`.
    bool awaitReceiver(const QString& receiver);
    /// Presses Up in Idle and waits for its announcement: with it, the router forgets all keys.
    bool awaitLoneKey();
    /// Waits until `condition` comes true.
    static bool await(const std::function<bool()>& condition);

protected:
    /// The seed of this run.
    static quint64 seed() { return FaultSeeds::current(); }
    /// Lets `fault` come about and go away several times; returns which promise was broken, or an empty text.
    /// Prints the figures.
    QString damageBy(Fault& fault);
    /// The time from press to announcement in milliseconds, the median of `presses` on these devices;
    /// nothing when a key is not announced.
    std::optional<double> latency(const QVector<int>& inputDevices = {0, 1}, int presses = 25);
    /// What is wrong with such latencies, while all is well and while it is not; empty when `disturbed` is of
    /// the same order.
    static QString slowness(double usual, double disturbed);
    /// What is wrong when so much was held at first and is now.
    QString growth(qint64 memoryBeforeKiB, int descriptorsBefore, qint64 slackKiB);
    /// What is wrong with the daemon's log if it should consist of lines like these.
    QString oddLines(const QStringList& patterns) const;

private Q_SLOTS:
    void initTestCase_data() { FaultSeeds::addRows(); }
    void initTestCase();

private:
    struct Round;

    QString round(Fault& fault, Round& figures);
    QString rounds(Fault& fault);
};

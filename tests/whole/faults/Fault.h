// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

#include <functional>

/// A fault around a running daemon. Its functions use QVERIFY to check that the fault occurs and that the
/// daemon handles it.
struct Fault
{
    /// For faults that queue hundreds of keys or lines, whose memory the heap keeps.
    static constexpr qint64 queueSlackKiB = 2 * 1024;

    /// Start and end the fault; called several times while the daemon is running.
    std::function<void()> begin;
    std::function<void()> end = [] {};
    /// Called once before the daemon starts; the device's services are running.
    std::function<void()> precede = [] {};
    /// The keyboards whose keys are announced without delay during the fault.
    QVector<int> freeKeyboards{0, 1};
    /// The allowed growth of the daemon's memory from the first to a later round. Two more rounds have 2000
    /// presses, so this detects leaks of 128 bytes a press or 128 KiB a round. RandomHourTest and tools/soak
    /// detect smaller leaks.
    qint64 slackKiB = 256;
    /// Patterns of the lines that the daemon must log because of the fault. Other lines are failures.
    QStringList log = {};
};

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/system/SystemTest.h"

#include <functional>

/// The base class of tests that attack the real daemon.
class SystemAbuseTest : public SystemTest
{
    Q_OBJECT

protected:
    /// Runs `attack` to warm up the daemon, then several more times. Returns a sentence if the daemon then
    /// has ended, ignores keys or commands, or uses more memory or descriptors. When `attack` returns, the
    /// daemon must have handled it completely. `slackKiB` is the allowed growth of the heap; a leak by the
    /// attack should be much larger.
    QString damageOf(const std::function<void()>& attack, qint64 slackKiB = 2048);

    /// A sentence if keys or commands do not work; empty otherwise. For attacks that cannot be repeated.
    QString faults();

    /// The daemon's private memory.
    qint64 memoryKiB();
    /// A sentence if this memory has grown by more than allowed; empty otherwise.
    QString growthFault(qint64 memoryBeforeKiB, qint64 allowedKiB);
    /// The number of the daemon's open descriptors.
    int descriptors();
    /// The number of open descriptors above `allowed` after many later commands; 0 or less if there are none.
    int descriptorsAbove(int allowed);
    /// Whether an idle daemon uses hardly any processor time.
    bool idles();

private:
    QString faultsAfter(const std::function<void()>& attack, int times);
    int processorMs();
};

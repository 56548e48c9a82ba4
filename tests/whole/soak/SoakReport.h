// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

/// What the daemon held and how fast it was at one moment of a soak.
struct SoakSample
{
    double seconds = 0;
    int pssKib = 0;
    int anonymousKib = 0;
    int residentKib = 0;
    int descriptors = 0;
    int threads = 0;
    /// Since the sample before: processor time for each second, and the way from a press to its announcement.
    double processorMs = 0;
    double medianMs = 0;
    double longestMs = 0;
};

/// Compares the first quarter of a soak with its last one.
struct SoakReport
{
    /// A table: what, its median in the first quarter, in the last one, and its trend for an hour.
    QStringList table;
    /// Sentences about what has grown; empty when nothing has.
    QStringList faults;

    /// `samples` in the order of time, four at least.
    static SoakReport of(const QVector<SoakSample>& samples);
    /// What stands in the columns of `line`, and the sample as such a line.
    static QString heading();
    static QString line(const SoakSample& sample);
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QVector>

/// The daemon's resources and speed at one moment of a soak.
struct SoakSample
{
    double seconds = 0;
    int pssKib = 0;
    int anonymousKib = 0;
    int residentKib = 0;
    int descriptors = 0;
    int threads = 0;
    /// Since the previous sample: processor time per second, and latency from a press to its announcement.
    double processorMs = 0;
    double medianMs = 0;
    double maxMs = 0;
};

/// Compares the first quarter of a soak with its last one.
struct SoakReport
{
    /// A table of each figure with its median in the first and the last quarter and its trend per hour.
    QStringList table;
    /// Sentences about figures that have grown.
    QStringList faults;

    /// `samples` must be chronological, and at least four.
    static SoakReport of(const QVector<SoakSample>& samples);
    /// The column headings of `line`, and a sample as a line.
    static QString heading();
    static QString line(const SoakSample& sample);
};

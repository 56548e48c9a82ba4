// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

/// What a process holds and has used, as the kernel counts it. A process that is gone has nothing.
struct ProcessFigures
{
    int pssKib = 0;
    int anonymousKib = 0;
    int residentKib = 0;
    int descriptors = 0;
    int threads = 0;
    /// Processor time since its start.
    int processorMs = 0;

    static ProcessFigures of(qint64 process);
};

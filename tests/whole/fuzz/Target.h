// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/fuzz/Bytes.h"

#include <memory>

/// What is fuzzed: one per program, which says what the bytes of a run mean and what must hold afterwards.
class Target
{
public:
    virtual ~Target() = default;

    /// Whether a run of these bytes tells something about the daemon.
    virtual bool accepts(Bytes) { return true; }
    virtual void run(Bytes& bytes) = 0;

    /// Made once in a process, before the first run. Each program has its own.
    static std::unique_ptr<Target> make();
};

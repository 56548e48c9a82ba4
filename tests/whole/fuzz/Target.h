// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/fuzz/Bytes.h"

#include <memory>

/// A fuzz target, one for each program: interprets the bytes of a run and checks its result.
class Target
{
public:
    virtual ~Target() = default;

    /// Whether a run with these bytes is meaningful.
    virtual bool accepts(Bytes) { return true; }
    virtual void run(Bytes& bytes) = 0;

    /// Creates the program's target. Called once in a process, before the first run.
    static std::unique_ptr<Target> make();
};

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"
#include "workbench/session/SessionEntry.h"

#include <memory>

class ObservationRecorder;
class SimulatedDevice;

/// A key script that is played on a device, and what comes of it.
class Replay
{
public:
    /// Reads a script that is to be replayed; with faults when it cannot be. For any thread, because a long
    /// text takes a second.
    static ParsedScript read(const QString& text);

    explicit Replay(const KeyScript& script);
    ~Replay();

    const KeyScript& script() const { return m_script; }
    /// The script is played on `device` from now on.
    void observe(SimulatedDevice& device);
    /// `Finished` compares what was observed with what the script expects.
    entry::Replay entryOf(entry::Replay::Status status) const;

private:
    KeyScript m_script;
    std::unique_ptr<ObservationRecorder> m_observer;
};

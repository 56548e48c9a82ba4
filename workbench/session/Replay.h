// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"
#include "workbench/session/SessionEntry.h"

#include <memory>

class ObservationRecorder;
class SimulatedDevice;

/// A key script that is played on a device, and its result.
class Replay
{
public:
    /// Parses a script for a replay. Thread-safe, so that long texts can be parsed on another thread.
    static ParsedScript read(const QString& text);

    explicit Replay(const KeyScript& script);
    ~Replay();

    const KeyScript& script() const { return m_script; }
    /// Starts observing `device`, on which the script is about to be played.
    void observe(SimulatedDevice& device);
    /// With `Finished`, lists the differences between the expectations and the observations.
    entry::Replay entryOf(entry::Replay::Status status) const;

private:
    KeyScript m_script;
    std::unique_ptr<ObservationRecorder> m_observer;
};

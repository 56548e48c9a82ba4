// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

/// Carries out the steps of a key script: the simulated device, or the daemon's classes in a test.
class ScriptTarget
{
public:
    virtual ~ScriptTarget() = default;

    /// `keyboard` is 0 or 1, `key` an identifier of `ls::KeyId`.
    virtual void press(int keyboard, const QString& key) = 0;
    virtual void release(int keyboard, const QString& key) = 0;
    /// Writes `record` and a SYN_REPORT record.
    virtual void record(int keyboard, const RawRecord& record) = 0;
    /// The state handler announces `state`, an identifier of `ls::StateId`.
    virtual void setState(const QString& state) = 0;
    /// A service that the daemon uses fails or recovers.
    virtual void setService(const ServiceChange& change) = 0;
    /// Sends `command` to the keyboard service without waiting for the response.
    virtual void sendCommand(const QVariantMap& command) = 0;
    /// Types `line` at the daemon's console.
    virtual void typeLine(const QString& line) = 0;

    /// Carries out `step` now.
    void play(const ScriptStep& step);
};

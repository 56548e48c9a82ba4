// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <tuple>

/// A place in the sequence of a play: within the handling of a step or at a moment between two steps.
/// Simultaneous timers have the same place.
struct Place
{
    static constexpr std::chrono::milliseconds inStep{-1};

    /// The number of started steps.
    int steps = 0;
    /// The time of a timer after the last of those steps; `inStep` within the step.
    std::chrono::milliseconds timer = inStep;

    static Place ofStep(int index) { return {index + 1, inStep}; }
    bool isInStep() const { return timer == inStep; }

    friend bool operator<(const Place& a, const Place& b) { return a.order() < b.order(); }
    friend bool operator==(const Place& a, const Place& b) { return a.order() == b.order(); }
    friend bool operator<=(const Place& a, const Place& b) { return a.order() <= b.order(); }

private:
    std::tuple<int, std::chrono::milliseconds> order() const { return {steps, timer}; }
};

/// An observation with its place among the steps.
struct PlayEvent
{
    std::chrono::milliseconds at{0};
    QString text;
    Place place;
};

/// A played script and its observations.
struct Play
{
    KeyScript script;
    QVector<PlayEvent> events;
};

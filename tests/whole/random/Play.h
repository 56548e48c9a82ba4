// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <tuple>

/// A place in the order of what goes on in a play: within the handling of a step, or at a moment between two
/// steps. Two things that timers do at the same moment have the same place.
struct Place
{
    static constexpr std::chrono::milliseconds inStep{-1};

    /// How many steps were begun.
    int steps = 0;
    /// The moment of a timer behind the last of those steps; `inStep` within the step.
    std::chrono::milliseconds timer = inStep;

    static Place ofStep(int index) { return {index + 1, inStep}; }
    bool isInStep() const { return timer == inStep; }

    friend bool operator<(const Place& a, const Place& b) { return a.order() < b.order(); }
    friend bool operator==(const Place& a, const Place& b) { return a.order() == b.order(); }
    friend bool operator<=(const Place& a, const Place& b) { return a.order() <= b.order(); }

private:
    std::tuple<int, std::chrono::milliseconds> order() const { return {steps, timer}; }
};

/// Something the daemon did, with its time and its place among the steps.
struct Happening
{
    std::chrono::milliseconds at{0};
    QString text;
    Place place;
};

/// A script that was played and what was observed.
struct Play
{
    KeyScript script;
    QVector<Happening> happenings;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "model/Effect.h"

#include <QVector>

#include <array>

namespace model {

/// Records which step last set or cleared each part of the situation.
class Causes
{
public:
    Causes() { m_setBy.fill(-1); }

    /// Returns the steps that last set the parts on which `effect` depends, ascending and without duplicates;
    /// -1 is the start. Then records `step`, the step of the effect, for the parts that the effect sets.
    QVector<int> take(const Effect& effect, int step);

private:
    std::array<int, partCount> m_setBy;
};

} // namespace model

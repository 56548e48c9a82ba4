// SPDX-License-Identifier: MIT
#pragma once

#include "model/KeyModel.h"
#include "simulator/script/KeyScript.h"

namespace control {

/// Whether the model of the keys announces what was announced.
struct KeyVerdict
{
    /// So close to a time limit, the daemon and a replay may decide differently.
    static constexpr std::chrono::milliseconds limitTolerance{20};

    /// A sentence about the first difference; empty if keys and state explain all announcements, and none is
    /// missing.
    QString unexplained;
    /// Whether a key or a change of the state comes so close to a time limit.
    bool isNearLimit = false;

    /// `script` begins when no key counts; its expectations are announcements without senders.
    static KeyVerdict of(const model::KeyModel& keyModel, const KeyScript& script);
};

} // namespace control

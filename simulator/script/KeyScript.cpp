// SPDX-License-Identifier: MIT
#include "simulator/script/KeyScript.h"

#include <algorithm>

const QString ServiceChange::stateHandler = QStringLiteral("state-handler");
const QString ServiceChange::speechDaemon = QStringLiteral("speechd");

std::chrono::milliseconds KeyScript::duration() const
{
    std::chrono::milliseconds last = steps.isEmpty() ? end : std::max(end, steps.last().at);
    for (const Observation& expectation : expectations) {
        last = std::max(last, expectation.at);
    }
    return last;
}

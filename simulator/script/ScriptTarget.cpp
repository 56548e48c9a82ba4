// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptTarget.h"

void ScriptTarget::play(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Heading:
        break;
    case ScriptStep::Kind::Press:
        return press(step.keyboard, step.text);
    case ScriptStep::Kind::Release:
        return release(step.keyboard, step.text);
    case ScriptStep::Kind::Record:
        return record(step.keyboard, step.record);
    case ScriptStep::Kind::State:
        return setState(step.text);
    case ScriptStep::Kind::Service:
        return setService(step.service);
    case ScriptStep::Kind::Command:
        return sendCommand(step.command);
    case ScriptStep::Kind::Console:
        return typeLine(step.text);
    }
}

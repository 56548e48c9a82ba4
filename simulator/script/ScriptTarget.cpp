// SPDX-License-Identifier: MIT
#include "simulator/script/ScriptTarget.h"

void ScriptTarget::play(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Heading:
        break;
    case ScriptStep::Kind::Press:
        press(step.keyboard, step.text);
        break;
    case ScriptStep::Kind::Release:
        release(step.keyboard, step.text);
        break;
    case ScriptStep::Kind::Record:
        record(step.keyboard, step.record);
        break;
    case ScriptStep::Kind::State:
        setState(step.text);
        break;
    case ScriptStep::Kind::Service:
        setService(step.service);
        break;
    case ScriptStep::Kind::Command:
        sendCommand(step.command);
        break;
    case ScriptStep::Kind::Console:
        typeLine(step.text);
        break;
    }
}

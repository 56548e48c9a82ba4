// SPDX-License-Identifier: MIT
#include "tests/model/ScriptOnDevice.h"

#include "simulator/script/KeyScriptText.h"
#include "simulator/script/Transcript.h"
#include "tests/model/ListMaps.h"
#include "tests/virtual/VirtualDevice.h"

namespace {

/// An unknown answer leaves the state unknown, like a state handler that does not answer.
const QString unknownState = QStringLiteral("Dreaming");

} // namespace

QString ScriptOnDevice::difference(const QString& text, const model::KeyLists& lists)
{
    const ParsedScript parsed = parseKeyScript(text);
    if (!parsed.faults.isEmpty()) {
        return parsed.faults.first().text + '\n' + text;
    }
    const KeyScript& script = parsed.script;
    VirtualDevice device;
    device.setModel(script.model);
    const auto files = ListMaps::filesOf(lists);
    for (auto it = files.begin(); it != files.end(); ++it) {
        device.setKeyList(it.key(), it.value());
    }
    device.start(script.services.isEmpty() ? script.initialState : unknownState);
    device.take();
    for (const ScriptStep& step : script.steps) {
        device.waitUntil(step.at);
        if (step.kind != ScriptStep::Kind::Service) {
            device.play(step);
        }
    }
    device.waitUntil(script.duration());
    const QStringList differences =
        Transcript::difference(script, device.takeObservations(), Transcript::Clock::Virtual);
    return differences.isEmpty() ? QString() : differences.join('\n') + '\n' + text;
}

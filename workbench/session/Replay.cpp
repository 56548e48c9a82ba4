// SPDX-License-Identifier: MIT
#include "workbench/session/Replay.h"

#include "simulator/device/ObservationRecorder.h"
#include "simulator/script/KeyScriptText.h"
#include "simulator/script/Transcript.h"

namespace {

constexpr int maxLength = 20'000;
/// More than a script can expect; about ten megabytes.
constexpr int maxObservations = 200'000;
constexpr int maxDifferences = 1000;
constexpr int maxDifferenceLength = 500;

QStringList shortened(const QStringList& differences)
{
    QStringList lines;
    for (const QString& line : differences.mid(0, maxDifferences)) {
        lines << line.left(maxDifferenceLength);
    }
    if (differences.size() > maxDifferences) {
        lines << QStringLiteral("... and %1 more").arg(differences.size() - maxDifferences);
    }
    return lines;
}

} // namespace

ParsedScript Replay::read(const QString& text)
{
    ParsedScript parsed = parseScriptFile(text.toUtf8());
    if (parsed.faults.isEmpty() &&
        parsed.script.steps.size() + parsed.script.expectations.size() > maxLength) {
        parsed.faults = {
            {0, QStringLiteral("More than %1 steps and expectations cannot be replayed.").arg(maxLength)}};
    }
    return parsed;
}

Replay::Replay(const KeyScript& script) : m_script(script) {}

Replay::~Replay() = default;

void Replay::observe(SimulatedDevice& device)
{
    m_observer = std::make_unique<ObservationRecorder>(device);
    m_observer->setLimit(maxObservations);
}

entry::Replay Replay::entryOf(entry::Replay::Status status) const
{
    const bool isComplete = status == entry::Replay::Status::Finished && m_observer;
    const QStringList differences =
        isComplete ? Transcript::difference(m_script, m_observer->observations(), Transcript::Clock::Real)
                   : QStringList();
    return {status, m_script.expectations.size(), shortened(differences)};
}

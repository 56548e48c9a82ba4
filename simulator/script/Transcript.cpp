// SPDX-License-Identifier: MIT
#include "simulator/script/Transcript.h"

#include "simulator/script/ObservationText.h"

#include <algorithm>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// A coarse timer may fire 5 % before its time, and no timer that the daemon sets for a key lasts longer
/// than the time since the script's start.
constexpr int earlyShare = 16;
constexpr milliseconds mostEarly = 600ms;

milliseconds earliest(const Observation& expectation)
{
    return expectation.at - std::min(expectation.at / earlyShare, mostEarly);
}

QString shown(const Observation& observation)
{
    return QStringLiteral("%1 ms: %2").arg(observation.at.count()).arg(observation.text);
}

QString missing(const Observation& expectation)
{
    return QStringLiteral("missing     ") + shown(expectation);
}

QString unexpected(const Observation& observation)
{
    return QStringLiteral("unexpected  ") + shown(observation);
}

Observations filtered(const Observations& all, bool log)
{
    Observations part;
    std::copy_if(all.begin(), all.end(), std::back_inserter(part), [log](const Observation& observation) {
        return ObservationText::isLogLine(observation.text) == log;
    });
    return part;
}

/// Walks both lists side by side; what is in one of them only is passed over as soon as the other goes on
/// with it, so that one missing line does not spoil the rest.
template <typename Same, typename Wrong>
QStringList walk(const Observations& expected, const Observations& observed, Same same, Wrong wrong)
{
    QStringList lines;
    auto seen = observed.begin();
    for (const Observation& expectation : expected) {
        const auto match = std::find_if(seen, observed.end(), [&](const Observation& observation) {
            return same(expectation, observation);
        });
        if (match == observed.end()) {
            lines << missing(expectation);
            continue;
        }
        std::for_each(seen, match, [&](const Observation& skipped) { wrong(skipped, lines); });
        seen = match + 1;
    }
    std::for_each(seen, observed.end(), [&](const Observation& left) { wrong(left, lines); });
    return lines;
}

bool sameMoment(const Observation& expectation, const Observation& observation)
{
    return expectation.text == observation.text && expectation.at == observation.at;
}

bool notEarly(const Observation& expectation, const Observation& observation)
{
    return expectation.text == observation.text && observation.at >= earliest(expectation);
}

void report(const Observation& observation, QStringList& lines)
{
    lines << unexpected(observation);
}

void passOver(const Observation&, QStringList&) {}

} // namespace

namespace Transcript {

QStringList difference(const Observations& expected, const Observations& observed, Mode mode)
{
    if (mode == Mode::Exact) {
        return walk(expected, observed, sameMoment, report);
    }
    return walk(filtered(expected, false), filtered(observed, false), notEarly, report) +
           walk(filtered(expected, true), filtered(observed, true), notEarly, passOver);
}

} // namespace Transcript

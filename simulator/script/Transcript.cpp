// SPDX-License-Identifier: MIT
#include "simulator/script/Transcript.h"

#include "simulator/script/ObservationText.h"

#include <QHash>

#include <algorithm>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// A coarse timer may fire 5 % before its time, and no timer that the daemon sets for a key lasts longer
/// than the time since the script's start.
constexpr int earlyShare = 16;
constexpr milliseconds mostEarly = 600ms;

/// What a recording and the script that is played of it may differ by.
constexpr milliseconds recordedTolerance = 100ms;

/// How an observation is held against an expectation.
struct Rules
{
    bool isLogApart = false;
    milliseconds tolerance{0};
    bool isClockReal = false;
    /// What is observed from then on may be too much.
    milliseconds judgedUntil = milliseconds::max();
};

Rules rulesFor(const KeyScript& script, Transcript::Clock clock)
{
    Rules rules;
    rules.isClockReal = clock == Transcript::Clock::Real;
    rules.isLogApart = rules.isClockReal || script.recorded;
    if (script.recorded) {
        rules.tolerance = recordedTolerance;
        rules.judgedUntil = script.duration() - recordedTolerance;
    }
    return rules;
}

milliseconds earliest(const Observation& expectation, const Rules& rules)
{
    const milliseconds coarse = rules.isClockReal ? std::min(expectation.at / earlyShare, mostEarly) : 0ms;
    return expectation.at - std::max(coarse, rules.tolerance);
}

milliseconds latest(const Observation& expectation, const Rules& rules)
{
    return rules.isClockReal ? milliseconds::max() : expectation.at + rules.tolerance;
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

/// Finds expected observations in a list that is in the order of time, however long both lists are.
class Finder
{
public:
    explicit Finder(const Observations& observed) : m_observed(observed)
    {
        for (int i = 0; i < observed.size(); ++i) {
            m_places[observed.at(i).text].append(i);
        }
    }

    /// The first match that is not before the place `from`; -1 when there is none.
    int find(const Observation& expectation, const Rules& rules, int from) const
    {
        const milliseconds begin = earliest(expectation, rules);
        const QVector<int> places = m_places.value(expectation.text);
        const auto place = std::partition_point(places.begin(), places.end(), [&](int candidate) {
            return candidate < from || m_observed.at(candidate).at < begin;
        });
        const bool found = place != places.end() && m_observed.at(*place).at <= latest(expectation, rules);
        return found ? *place : -1;
    }

private:
    const Observations& m_observed;
    QHash<QString, QVector<int>> m_places;
};

/// Walks both lists side by side; what is in one of them only is passed over as soon as the other goes on
/// with it, so that one missing line does not spoil the rest. `isWrong` tells whether an observation that is
/// not expected is a difference.
template <typename IsWrong>
QStringList walk(const Observations& expected, const Observations& observed, const Rules& rules,
                 IsWrong isWrong)
{
    QStringList lines;
    int seen = 0;
    const auto reportUntil = [&](int end) {
        for (; seen < end; ++seen) {
            if (isWrong(observed.at(seen))) {
                lines << unexpected(observed.at(seen));
            }
        }
    };
    const Finder finder(observed);
    for (const Observation& expectation : expected) {
        const int match = finder.find(expectation, rules, seen);
        if (match == -1) {
            lines << missing(expectation);
            continue;
        }
        reportUntil(match);
        seen = match + 1;
    }
    reportUntil(observed.size());
    return lines;
}

} // namespace

namespace Transcript {

QStringList difference(const KeyScript& script, const Observations& observed, Clock clock)
{
    const Rules rules = rulesFor(script, clock);
    const auto isJudged = [&](const Observation& observation) { return observation.at < rules.judgedUntil; };
    if (!rules.isLogApart) {
        return walk(script.expectations, observed, rules, isJudged);
    }
    const auto never = [](const Observation&) { return false; };
    return walk(filtered(script.expectations, false), filtered(observed, false), rules, isJudged) +
           walk(filtered(script.expectations, true), filtered(observed, true), rules, never);
}

} // namespace Transcript

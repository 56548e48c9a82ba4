// SPDX-License-Identifier: MIT
#include "simulator/script/Transcript.h"

#include "simulator/script/ObservationText.h"

#include <QHash>

#include <algorithm>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

/// A coarse timer may fire 5 % early, and no timer that the daemon sets for a key lasts longer than the time
/// since the script's start.
constexpr int earlyDivisor = 16;
constexpr milliseconds maxEarly = 600ms;

/// The allowed difference between a recording and its replay.
constexpr milliseconds recordedTolerance = 100ms;

struct Rules
{
    bool isLogSeparate = false;
    milliseconds tolerance{0};
    bool isClockReal = false;
    /// Unexpected observations from then on are ignored.
    milliseconds comparedUntil = milliseconds::max();
};

Rules rulesFor(const KeyScript& script, Transcript::Clock clock)
{
    Rules rules;
    rules.isClockReal = clock == Transcript::Clock::Real;
    rules.isLogSeparate = rules.isClockReal || script.recorded;
    if (script.recorded) {
        rules.tolerance = recordedTolerance;
        rules.comparedUntil = script.duration() - recordedTolerance;
    }
    return rules;
}

milliseconds earliest(const Observation& expectation, const Rules& rules)
{
    const milliseconds coarse = rules.isClockReal ? std::min(expectation.at / earlyDivisor, maxEarly) : 0ms;
    return expectation.at - std::max(coarse, rules.tolerance);
}

milliseconds latest(const Observation& expectation, const Rules& rules)
{
    return rules.isClockReal ? milliseconds::max() : expectation.at + rules.tolerance;
}

QString format(const Observation& observation)
{
    return QStringLiteral("%1 ms: %2").arg(observation.at.count()).arg(observation.text);
}

QString missing(const Observation& expectation)
{
    return QStringLiteral("missing     ") + format(expectation);
}

QString unexpected(const Observation& observation)
{
    return QStringLiteral("unexpected  ") + format(observation);
}

template <typename IsTaken>
Observations filtered(const Observations& all, IsTaken isTaken)
{
    Observations part;
    std::copy_if(all.begin(), all.end(), std::back_inserter(part),
                 [&](const Observation& observation) { return isTaken(observation.text); });
    return part;
}

bool isNoLogLine(const QString& text)
{
    return !ObservationText::isLogLine(text);
}

/// Finds expected observations in a chronological list by binary search.
class Finder
{
public:
    explicit Finder(const Observations& observed) : m_observed(observed)
    {
        for (int i = 0; i < observed.size(); ++i) {
            m_indexes[observed.at(i).text].append(i);
        }
    }

    /// The index of the first match from the index `from` on; -1 if nothing matches.
    int find(const Observation& expectation, const Rules& rules, int from) const
    {
        const milliseconds begin = earliest(expectation, rules);
        const QVector<int> indexes = m_indexes.value(expectation.text);
        const auto index = std::partition_point(indexes.begin(), indexes.end(), [&](int candidate) {
            return candidate < from || m_observed.at(candidate).at < begin;
        });
        const bool found = index != indexes.end() && m_observed.at(*index).at <= latest(expectation, rules);
        return found ? *index : -1;
    }

private:
    const Observations& m_observed;
    QHash<QString, QVector<int>> m_indexes;
};

/// Matches each expectation with the next equal observation. An expectation without a match does not affect
/// those that follow. `isWrong` decides whether an unexpected observation is a difference.
template <typename IsWrong>
QStringList compare(const Observations& expected, const Observations& observed, const Rules& rules,
                    IsWrong isWrong)
{
    QStringList lines;
    int next = 0;
    const auto reportUntil = [&](int end) {
        for (; next < end; ++next) {
            if (isWrong(observed.at(next))) {
                lines << unexpected(observed.at(next));
            }
        }
    };
    const Finder finder(observed);
    for (const Observation& expectation : expected) {
        const int match = finder.find(expectation, rules, next);
        if (match == -1) {
            lines << missing(expectation);
            continue;
        }
        reportUntil(match);
        next = match + 1;
    }
    reportUntil(observed.size());
    return lines;
}

} // namespace

namespace Transcript {

QStringList difference(const KeyScript& script, const Observations& observed, Clock clock)
{
    const Rules rules = rulesFor(script, clock);
    const auto isCompared = [&](const Observation& observation) {
        return observation.at < rules.comparedUntil;
    };
    if (script.hasOnlyAnnouncements) {
        const auto& isTaken = ObservationText::isAnnouncement;
        return compare(filtered(script.expectations, isTaken), filtered(observed, isTaken), rules,
                       isCompared);
    }
    if (!rules.isLogSeparate) {
        return compare(script.expectations, observed, rules, isCompared);
    }
    const auto never = [](const Observation&) { return false; };
    const auto& isLogLine = ObservationText::isLogLine;
    return compare(filtered(script.expectations, isNoLogLine), filtered(observed, isNoLogLine), rules,
                   isCompared) +
           compare(filtered(script.expectations, isLogLine), filtered(observed, isLogLine), rules, never);
}

} // namespace Transcript

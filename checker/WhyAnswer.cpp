// SPDX-License-Identifier: MIT
#include "checker/WhyAnswer.h"

#include "checker/CauseWords.h"
#include "checker/OutputWords.h"
#include "checker/Times.h"

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

constexpr int timeWidth = 10;
constexpr int eventWidth = 18;

/// A part of a playback: its first step and the one after its last.
struct Part
{
    int begin = 0;
    int end = 0;
};

bool isKey(const PlayedStep& step)
{
    return step.origin != PlayedStep::Origin::Time && step.input.kind != Input::Kind::ChangeState &&
           step.input.kind != Input::Kind::StartTest;
}

bool isQuiet(const Situation& situation)
{
    Situation quiet = Situation::initial(situation.state);
    quiet.testMode = situation.testMode;
    return situation == quiet;
}

/// Parts end when all keys are up and forgotten; a change of the state belongs to the keys after it.
QVector<Part> partsOf(const QVector<PlayedStep>& steps)
{
    QVector<Part> parts;
    Part part;
    int down = 0;
    bool hasKeys = false;
    for (; part.end < steps.size();) {
        const PlayedStep& step = steps.at(part.end++);
        const bool isFinger = step.origin == PlayedStep::Origin::Finger;
        down += isFinger ? (step.input.kind == Input::Kind::Press ? 1 : -1) : 0;
        hasKeys = hasKeys || isKey(step);
        if (hasKeys && down == 0 && isQuiet(step.after)) {
            parts.append(part);
            part.begin = part.end;
            hasKeys = false;
        }
    }
    if (part.begin < part.end) {
        parts.append(part);
    }
    return parts;
}

/// Writes the lines about one part after the other.
class WhyWriter
{
public:
    WhyWriter(const KeyLists& lists, const KeyScript& script, const PlaceOf& placeOf, int maxTrials)
        : m_search(lists, script, maxTrials), m_effects(lists, placeOf), m_causes(m_search, m_effects)
    {}

    const QVector<PlayedStep>& steps() const { return m_search.original().steps(); }
    void write(const Part& part);
    QStringList lines() const { return m_lines; }

private:
    void writeStep(int step);
    void writeOutcome(const Part& part);
    void writeCauses(const Part& part);

    CauseSearch m_search;
    EffectWords m_effects;
    CauseWords m_causes;
    QStringList m_lines;
};

void WhyWriter::write(const Part& part)
{
    if (!m_lines.isEmpty()) {
        m_lines.append(QString());
    }
    for (int step = part.begin; step < part.end; ++step) {
        writeStep(step);
    }
    writeOutcome(part);
    writeCauses(part);
}

void WhyWriter::writeStep(int step)
{
    const PlayedStep& played = steps().at(step);
    QStringList phrases = m_effects.phrasesOf(steps(), step);
    if (phrases.isEmpty() && played.origin == PlayedStep::Origin::Time) {
        return;
    }
    if (phrases.isEmpty() && isKey(played)) {
        phrases.append(QStringLiteral("does nothing"));
    }
    // Each line makes sense alone.
    const QString start = Times::sinceStart(played.at) + QStringLiteral("  ") + EffectWords::eventOf(played);
    if (phrases.isEmpty()) {
        m_lines.append(start);
    }
    for (const QString& phrase : qAsConst(phrases)) {
        m_lines.append(start.leftJustified(timeWidth + eventWidth) + phrase);
    }
}

void WhyWriter::writeOutcome(const Part& part)
{
    const auto isPerceived = [](const PlayedStep& step) {
        return std::any_of(step.outputs.begin(), step.outputs.end(), OutputWords::isPerceived);
    };
    const bool hasKeys = std::any_of(steps().begin() + part.begin, steps().begin() + part.end, isKey);
    if (hasKeys && std::none_of(steps().begin() + part.begin, steps().begin() + part.end, isPerceived)) {
        m_lines.append(QStringLiteral("Nothing was spoken and nothing was announced."));
    }
}

/// Facts with the same causes are one sentence.
void WhyWriter::writeCauses(const Part& part)
{
    int firstKey = -1;
    for (int step = part.begin; step < part.end && firstKey == -1; ++step) {
        firstKey = isKey(steps().at(step)) ? m_search.original().idOf(step) : -1;
    }
    QStringList causes;
    QVector<QStringList> facts;
    const QVector<Swallowed> all = m_search.swallowed();
    for (const Swallowed& swallowed : all) {
        if (swallowed.step < part.begin || swallowed.step >= part.end) {
            continue;
        }
        const QString remedy = m_causes.remedyOf(swallowed, firstKey);
        const QString cause = m_causes.causesOf(swallowed, m_search.causesOf(swallowed)) + QLatin1Char('.') +
                              (remedy.isEmpty() ? QString() : QLatin1Char(' ') + remedy);
        if (!causes.contains(cause)) {
            causes.append(cause);
            facts.append(QStringList());
        }
        facts[causes.indexOf(cause)].append(QStringLiteral("%1 (%2)").arg(
            m_causes.factOf(swallowed), Times::duration(steps().at(swallowed.step).at)));
    }
    for (int i = 0; i < causes.size(); ++i) {
        m_lines.append(facts.at(i).join(QStringLiteral(", ")) + QLatin1Char(':'));
        m_lines.append(QStringLiteral("  ") + causes.at(i));
    }
}

} // namespace

QStringList WhyAnswer::of(const KeyLists& lists, const KeyScript& script, const PlaceOf& placeOf,
                          std::optional<milliseconds> at, int maxTrials)
{
    WhyWriter writer(lists, script, placeOf, maxTrials);
    const QVector<Part> parts = partsOf(writer.steps());
    const auto distance = [&](const Part& part) {
        const milliseconds begin = writer.steps().at(part.begin).at;
        const milliseconds end = writer.steps().at(part.end - 1).at;
        return std::max({begin - *at, *at - end, milliseconds::zero()});
    };
    const auto nearest = [&](const Part& a, const Part& b) { return distance(a) < distance(b); };
    if (at && !parts.isEmpty()) {
        writer.write(*std::min_element(parts.begin(), parts.end(), nearest));
        return writer.lines();
    }
    for (const Part& part : parts) {
        writer.write(part);
    }
    return writer.lines();
}

} // namespace checker

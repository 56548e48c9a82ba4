// SPDX-License-Identifier: MIT
#include "checker/RunWords.h"

#include "checker/Times.h"
#include "model/Witness.h"

#include <QStringList>

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

QString nameOf(Input input)
{
    const QString key = Alphabet::nameOf(input.key());
    return input.device == 0 ? key : QStringLiteral("%1 on device %2").arg(key).arg(input.device);
}

QString wordsOfOther(Input input)
{
    switch (input.kind) {
    case Input::Kind::Press:
        return QStringLiteral("a record that %1 is pressed").arg(nameOf(input));
    case Input::Kind::Release:
        return QStringLiteral("a record that %1 is released").arg(nameOf(input));
    case Input::Kind::Repeat:
        return QStringLiteral("a record that %1 repeats").arg(nameOf(input));
    case Input::Kind::ChangeState:
        return QStringLiteral("the state becomes %1").arg(Alphabet::nameOf(input.newState()));
    case Input::Kind::StartTest:
        return QStringLiteral("the keyboard test begins");
    case Input::Kind::SimulateCombination:
        return QStringLiteral("a service simulates %1 for combinations").arg(nameOf(input));
    case Input::Kind::SimulateShortcut:
        return QStringLiteral("a service simulates %1 for shortcuts").arg(nameOf(input));
    default:
        return {};
    }
}

/// Turns the movements into phrases, from the first to the last.
class Phrases
{
public:
    Phrases(const QVector<PlayedStep>& steps, milliseconds end, RunWords::Limits limits);

    QString text() const { return m_phrases.join(QStringLiteral(", then ")); }

private:
    bool isMovement(int i, Input::Kind kind) const;
    void add();
    void addKeyPress();
    void addPair();
    void noteWait(milliseconds until);
    /// The time of a movement; the end for the one after the last.
    milliseconds timeOf(int i) const { return i < m_moves.size() ? m_moves.at(i).at : m_end; }

    QVector<PlayedStep> m_moves;
    milliseconds m_end;
    RunWords::Limits m_limits;
    int m_next = 0;
    int m_held = 0;
    milliseconds m_now{0};
    QStringList m_phrases;
};

Phrases::Phrases(const QVector<PlayedStep>& steps, milliseconds end, RunWords::Limits limits)
    : m_end(end), m_limits(limits)
{
    std::copy_if(steps.begin(), steps.end(), std::back_inserter(m_moves),
                 [](const PlayedStep& step) { return step.origin != PlayedStep::Origin::Time; });
    m_now = m_moves.isEmpty() ? end : m_moves.first().at;
    while (m_next < m_moves.size()) {
        noteWait(timeOf(m_next));
        add();
    }
    noteWait(m_end);
}

bool Phrases::isMovement(int i, Input::Kind kind) const
{
    return i < m_moves.size() && m_moves.at(i).origin == PlayedStep::Origin::Finger &&
           m_moves.at(i).input.kind == kind;
}

void Phrases::add()
{
    const bool isPair = isMovement(m_next, Input::Kind::Press) &&
                        isMovement(m_next + 1, Input::Kind::Press) && timeOf(m_next) == timeOf(m_next + 1);
    if (isPair) {
        addPair();
    } else if (isMovement(m_next, Input::Kind::Press)) {
        addKeyPress();
    } else {
        const Input input = m_moves.at(m_next).input;
        const bool isRelease = isMovement(m_next, Input::Kind::Release);
        m_held -= isRelease ? 1 : 0;
        m_phrases.append(isRelease ? QStringLiteral("release ") + nameOf(input) : wordsOfOther(input));
        m_now = timeOf(m_next++);
    }
}

/// A key that is released next, or not at all, is a phrase together with its release.
void Phrases::addKeyPress()
{
    const Input input = m_moves.at(m_next).input;
    const bool isLast = m_next + 1 == m_moves.size();
    const bool isReleased = !isLast && isMovement(m_next + 1, Input::Kind::Release) &&
                            m_moves.at(m_next + 1).input == Input::release(input.key(), input.device);
    const milliseconds duration = timeOf(m_next + 1) - timeOf(m_next);
    m_now = timeOf(m_next);
    if ((isReleased || isLast) && duration >= m_limits.hold) {
        m_phrases.append(QStringLiteral("hold %1 for %2").arg(nameOf(input), Times::duration(duration)));
        m_now = timeOf(m_next + 1);
    } else if (isReleased) {
        m_phrases.append((m_held > 0 ? QStringLiteral("tap ") : QString()) + nameOf(input));
        m_now = timeOf(m_next + 1);
    } else {
        m_phrases.append((isLast ? QStringLiteral("press ") : QStringLiteral("hold ")) + nameOf(input));
        ++m_held;
    }
    m_next += isReleased ? 2 : 1;
}

void Phrases::addPair()
{
    const QString first = nameOf(m_moves.at(m_next).input);
    m_phrases.append(
        QStringLiteral("press %1 and %2 together").arg(first, nameOf(m_moves.at(m_next + 1).input)));
    m_now = timeOf(m_next);
    m_held += 2;
    m_next += 2;
}

void Phrases::noteWait(milliseconds until)
{
    if (until - m_now >= m_limits.pause) {
        m_phrases.append(QStringLiteral("wait ") + Times::duration(until - m_now));
    }
    m_now = until;
}

} // namespace

QString RunWords::of(const QVector<PlayedStep>& steps, milliseconds end, Limits limits)
{
    return Phrases(steps, end, limits).text();
}

QString RunWords::of(const KeyModel& keyModel, const Environment& environment, const Run& run)
{
    const Playback playback = Witness::play(keyModel, environment, run);
    return of(playback.steps(), playback.now());
}

} // namespace checker

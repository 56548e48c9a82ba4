// SPDX-License-Identifier: MIT
#include "tests/whole/random/Trial.h"

#include "simulator/script/KeyScriptText.h"
#include "tests/whole/random/Epilogue.h"
#include "tests/whole/random/Invariants.h"
#include "tests/whole/random/Player.h"
#include "tests/whole/random/Shrinker.h"

#include <algorithm>

namespace {

bool isSame(const Play& first, const Play& second)
{
    const auto same = [](const PlayEvent& a, const PlayEvent& b) {
        return a.at == b.at && a.text == b.text && a.place == b.place;
    };
    return std::equal(first.events.cbegin(), first.events.cend(), second.events.cbegin(),
                      second.events.cend(), same);
}

/// Rows and names outside the grammar of key scripts can be played only from here.
QString grammarNotes(const QString& text)
{
    QString notes;
    const QVector<ScriptFault> faults = parseKeyScript(text).faults;
    for (const ScriptFault& fault : faults) {
        notes += QStringLiteral("# not in the grammar: ") + fault.text + QLatin1Char('\n');
    }
    return notes;
}

} // namespace

Trial::Result Trial::run(const KeyScript& script, quint64 seed)
{
    const KeyScript whole = Epilogue::appendedTo(script);
    const Play play = Player::play(whole);
    const invariants::Violation violation = invariants::firstViolation(play);
    if (violation.number != 0) {
        return {violation.number, violation.text};
    }
    if (!isSame(play, Player::play(whole))) {
        return {repeatabilityNumber, QStringLiteral("repeatability: the second play differs from the first")};
    }
    if (!isSame(play, Player::playInPieces(whole, seed))) {
        return {piecewiseNumber, QStringLiteral("piecewise time: the play in small pieces of time differs")};
    }
    return {};
}

QString Trial::report(const KeyScript& script, quint64 seed, const Result& result)
{
    const auto shows = [&](const KeyScript& shorter) {
        return run(shorter, seed).violated == result.violated;
    };
    KeyScript shortest = Epilogue::appendedTo(Shrinker::shrink(script, shows));
    const Play play = Player::play(shortest);
    for (const PlayEvent& event : play.events) {
        shortest.expectations.append({event.at, event.text});
    }
    const QString text = writeKeyScript(shortest);
    return QStringLiteral("# seed %1, invariant %2, %3\n").arg(seed).arg(result.violated).arg(result.text) +
           grammarNotes(text) + text;
}

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
    const auto same = [](const Happening& a, const Happening& b) {
        return a.at == b.at && a.text == b.text && a.place == b.place;
    };
    return std::equal(first.happenings.cbegin(), first.happenings.cend(), second.happenings.cbegin(),
                      second.happenings.cend(), same);
}

/// Rows and names that the grammar of key scripts leaves out can be played from here only.
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
        return {sameAgainNumber, QStringLiteral("sameAgain: the second play differs from the first")};
    }
    if (!isSame(play, Player::playInPieces(whole, seed))) {
        return {sameInPiecesNumber,
                QStringLiteral("sameInPieces: in small pieces of time something else happens")};
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
    for (const Happening& happening : play.happenings) {
        shortest.expectations.append({happening.at, happening.text});
    }
    const QString text = writeKeyScript(shortest);
    return QStringLiteral("# seed %1, invariant %2, %3\n").arg(seed).arg(result.violated).arg(result.text) +
           grammarNotes(text) + text;
}

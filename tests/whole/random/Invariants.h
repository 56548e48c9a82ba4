// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Facts.h"

/// What holds in every play, whatever the key lists and whatever is done. docs/behaviour.md has
/// the same list in words for people who write key lists.
///
/// Each check returns a sentence about the first violation, or an empty text.
namespace invariants {

struct Invariant
{
    int number;
    const char* name;
    const char* description;
    QString (*check)(const Facts&);
};

const QVector<Invariant>& all();

/// The number and the sentence of the first invariant that does not hold; 0 and empty when all do.
struct Violation
{
    int number = 0;
    QString text;
};
Violation firstViolation(const Play& play);

QString everythingHasAKnownShape(const Facts& facts);
QString everythingHasItsTime(const Facts& facts);
QString timersDoNothingElse(const Facts& facts);
QString startupAnswersEachPress(const Facts& facts);
QString startupAnnouncesNoKey(const Facts& facts);
QString busyStatesSendEachReleaseAtOnce(const Facts& facts);
QString idleSendsOnlyMenuAtOnce(const Facts& facts);
QString loneKeysComeWhenTheWindowEnds(const Facts& facts);
QString gesturesAreRowsOfTheLists(const Facts& facts);
QString refusalsNameTheStates(const Facts& facts);
QString combinationsWereOpened(const Facts& facts);
QString shortRowsAheadAlwaysCombine(const Facts& facts);
QString shortcutsNeedTheirOpeningKey(const Facts& facts);
QString longPressesLastTheirTime(const Facts& facts);
QString undisturbedLongPressesCome(const Facts& facts);
QString factoryResetTakesFiveSeconds(const Facts& facts);
QString sendersAreNamedOnce(const Facts& facts);
QString releasesSpeakTheirKey(const Facts& facts);
QString cancellationsHaveASentence(const Facts& facts);
QString commandsAreAnsweredOnce(const Facts& facts);
QString consoleLinesAreAnsweredOnce(const Facts& facts);
QString oddValuesAreReported(const Facts& facts);
QString nothingComesInTheQuiet(const Facts& facts);
QString theNextKeyWorks(const Facts& facts);

/// For the sentences: "at 1500 ms, behind 4 steps: TEXT".
QString described(const Happening& happening);

} // namespace invariants

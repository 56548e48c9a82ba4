// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/Facts.h"

/// The properties of every play, for any key lists and actions. docs/behaviour.md describes them for authors
/// of key lists.
///
/// Each check returns a sentence about the first violation, or an empty string.
namespace invariants {

struct Invariant
{
    int number;
    const char* name;
    const char* description;
    QString (*check)(const Facts&);
};

const QVector<Invariant>& all();

/// The number and sentence of the first violated invariant; 0 and empty if all hold.
struct Violation
{
    int number = 0;
    QString text;
};
Violation firstViolation(const Play& play);

QString allEventsAreKnown(const Facts& facts);
QString eventsAreInOrder(const Facts& facts);
QString timersCauseOnlyKnownActions(const Facts& facts);
QString startupAnswersEachPress(const Facts& facts);
QString startupAnnouncesNoKey(const Facts& facts);
QString busyStatesSendEachReleaseAtOnce(const Facts& facts);
QString idleSendsOnlyMenuAtOnce(const Facts& facts);
QString loneKeysAreSentAtTheEndOfTheWindow(const Facts& facts);
QString gesturesAreRowsOfTheLists(const Facts& facts);
QString refusalsNameTheStates(const Facts& facts);
QString combinationsWereOpened(const Facts& facts);
QString earlyShortRowsAlwaysCombine(const Facts& facts);
QString shortcutsNeedTheirOpeningKey(const Facts& facts);
QString longPressesLastTheirTime(const Facts& facts);
QString undisturbedLongPressesAreAnnounced(const Facts& facts);
QString factoryResetTakesFiveSeconds(const Facts& facts);
QString sendersAreNamedOnce(const Facts& facts);
QString releasesSpeakTheirKey(const Facts& facts);
QString cancellationsHaveASentence(const Facts& facts);
QString commandsAreAnsweredOnce(const Facts& facts);
QString consoleLinesAreAnsweredOnce(const Facts& facts);
QString invalidValuesAreReported(const Facts& facts);
QString nothingHappensInTheQuietTime(const Facts& facts);
QString theNextKeyWorks(const Facts& facts);

/// For the sentences: "at 1500 ms, after 4 steps: TEXT".
QString described(const PlayEvent& event);

} // namespace invariants

// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"

namespace invariants {

const QVector<Invariant>& all()
{
    static const QVector<Invariant> list{
        {1, "everythingHasAKnownShape",
         "only announcements, known sentences, cancellations, answers and log lines come",
         everythingHasAKnownShape},
        {2, "everythingHasItsTime",
         "what comes is in the order of time, and what a step causes comes at once", everythingHasItsTime},
        {3, "timersDoNothingElse",
         "between steps come lone keys, long presses and the factory reset, nothing else",
         timersDoNothingElse},
        {4, "startupAnswersEachPress",
         "each press in Startup is answered by the start-up sentence and nothing else",
         startupAnswersEachPress},
        {5, "startupAnnouncesNoKey",
         "in Startup only what began before or what a command simulates is announced", startupAnnouncesNoKey},
        {6, "busyStatesSendEachReleaseAtOnce",
         "outside of Idle and Startup each release is a single key at once", busyStatesSendEachReleaseAtOnce},
        {7, "idleSendsOnlyMenuAtOnce", "in Idle only Menu is a single key at once, unless Help is pending",
         idleSendsOnlyMenuAtOnce},
        {8, "loneKeysComeWhenTheWindowEnds", "in Idle a lone key comes 1500 ms after the last release",
         loneKeysComeWhenTheWindowEnds},
        {9, "gesturesAreRowsOfTheLists",
         "each gesture is one of a row that is valid in the state of the moment", gesturesAreRowsOfTheLists},
        {10, "refusalsNameTheStates",
         "a dropped gesture is logged with its own state and the state of the moment", refusalsNameTheStates},
        {11, "combinationsWereOpened", "a combination's keys were released before, and the last one just now",
         combinationsWereOpened},
        {12, "shortRowsAheadAlwaysCombine",
         "combinations ahead of the first longer row come whenever they are typed",
         shortRowsAheadAlwaysCombine},
        {13, "shortcutsNeedTheirOpeningKey",
         "a shortcut comes for the first row of its held and its pressed key", shortcutsNeedTheirOpeningKey},
        {14, "longPressesLastTheirTime",
         "a long press comes the time of the key's last row after its first repeat",
         longPressesLastTheirTime},
        {15, "undisturbedLongPressesCome",
         "a held key that nothing disturbs is a long press in each valid state", undisturbedLongPressesCome},
        {16, "factoryResetTakesFiveSeconds", "the factory reset comes 5000 ms after its press, and is spoken",
         factoryResetTakesFiveSeconds},
        {17, "sendersAreNamedOnce", "the sender of a command is named in the one announcement behind it",
         sendersAreNamedOnce},
        {18, "releasesSpeakTheirKey",
         "a release speaks its key once for each combination and once for itself", releasesSpeakTheirKey},
        {19, "cancellationsHaveASentence", "speech is cancelled only for a sentence that follows at once",
         cancellationsHaveASentence},
        {20, "commandsAreAnsweredOnce", "each command gets the one answer that belongs to it",
         commandsAreAnsweredOnce},
        {21, "consoleLinesAreAnsweredOnce", "each console line gets a response or a help screen",
         consoleLinesAreAnsweredOnce},
        {22, "oddValuesAreReported", "key values that mean nothing are logged, once each",
         oddValuesAreReported},
        {23, "nothingComesInTheQuiet", "nothing comes when no key is held and all windows are over",
         nothingComesInTheQuiet},
        {24, "theNextKeyWorks", "whatever went before, a lone key is spoken and announced afterwards",
         theNextKeyWorks},
    };
    return list;
}

Violation firstViolation(const Play& play)
{
    const Facts facts(play);
    for (const Invariant& invariant : all()) {
        const QString text = invariant.check(facts);
        if (!text.isEmpty()) {
            return {invariant.number, QStringLiteral("%1: %2").arg(QLatin1String(invariant.name), text)};
        }
    }
    return {};
}

QString described(const Happening& happening)
{
    return QStringLiteral("at %1 ms, behind %2 steps: %3")
        .arg(happening.at.count())
        .arg(happening.place.steps)
        .arg(happening.text);
}

} // namespace invariants

// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"

namespace invariants {

const QVector<Invariant>& all()
{
    static const QVector<Invariant> list{
        {1, "allEventsAreKnown",
         "all observations are announcements, known sentences, cancellations, answers or log lines",
         allEventsAreKnown},
        {2, "eventsAreInOrder",
         "observations are in chronological order, and the effects of a step are immediate",
         eventsAreInOrder},
        {3, "timersCauseOnlyKnownActions",
         "between steps, only lone keys, long presses and the factory reset occur",
         timersCauseOnlyKnownActions},
        {4, "startupAnswersEachPress", "each press in Startup causes the start-up sentence and nothing else",
         startupAnswersEachPress},
        {5, "startupAnnouncesNoKey", "in Startup, only earlier gestures and simulated ones are announced",
         startupAnnouncesNoKey},
        {6, "busyStatesSendEachReleaseAtOnce",
         "outside Idle and Startup, each release is immediately a single key",
         busyStatesSendEachReleaseAtOnce},
        {7, "idleSendsOnlyMenuAtOnce",
         "in Idle, only Menu is immediately a single key, unless Help is pending", idleSendsOnlyMenuAtOnce},
        {8, "loneKeysAreSentAtTheEndOfTheWindow",
         "in Idle, a lone key is sent 1500 ms after the last release", loneKeysAreSentAtTheEndOfTheWindow},
        {9, "gesturesAreRowsOfTheLists", "each gesture is that of a row that is valid in the current state",
         gesturesAreRowsOfTheLists},
        {10, "refusalsNameTheStates", "a dropped gesture is logged with its state and the current state",
         refusalsNameTheStates},
        {11, "combinationsWereOpened", "a combination's keys were released before, and the last one just now",
         combinationsWereOpened},
        {12, "earlyShortRowsAlwaysCombine",
         "combinations before the first longer row are recognised whenever they are typed",
         earlyShortRowsAlwaysCombine},
        {13, "shortcutsNeedTheirOpeningKey",
         "a shortcut is that of the first row with its held and its pressed key",
         shortcutsNeedTheirOpeningKey},
        {14, "longPressesLastTheirTime",
         "a long press is announced the time of the key's last row after the first repetition",
         longPressesLastTheirTime},
        {15, "undisturbedLongPressesAreAnnounced",
         "a key held without disturbance is a long press in each valid state",
         undisturbedLongPressesAreAnnounced},
        {16, "factoryResetTakesFiveSeconds",
         "the factory reset is announced and spoken 5000 ms after the press", factoryResetTakesFiveSeconds},
        {17, "sendersAreNamedOnce", "the sender of a command is named only in the next announcement",
         sendersAreNamedOnce},
        {18, "releasesSpeakTheirKey",
         "a release speaks its key once for each combination and once for itself", releasesSpeakTheirKey},
        {19, "cancellationsHaveASentence", "speech is cancelled only for a sentence that follows immediately",
         cancellationsHaveASentence},
        {20, "commandsAreAnsweredOnce", "each command gets exactly its answer", commandsAreAnsweredOnce},
        {21, "consoleLinesAreAnsweredOnce", "each console line gets a response or a help screen",
         consoleLinesAreAnsweredOnce},
        {22, "invalidValuesAreReported", "each meaningless key value is logged once",
         invalidValuesAreReported},
        {23, "nothingHappensInTheQuietTime", "nothing happens while no key is held and all windows are over",
         nothingHappensInTheQuietTime},
        {24, "theNextKeyWorks", "after any script, a lone key is spoken and announced", theNextKeyWorks},
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

QString described(const PlayEvent& event)
{
    return QStringLiteral("at %1 ms, after %2 steps: %3")
        .arg(event.at.count())
        .arg(event.place.steps)
        .arg(event.text);
}

} // namespace invariants

// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"

#include <algorithm>
#include <limits>

using namespace std::chrono_literals;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds factoryResetHold = 5000ms;
constexpr Place beginning{0, -2ms};

bool isLongPress(const Announcement& announcement)
{
    return !Facts::isSingleKey(announcement) && announcement.action != ls::KeyboardActionId::FactoryReset &&
           announcement.keys.size() == 1;
}

/// Only the last row for a key is used.
std::optional<KeyRow> rowOf(const Facts& facts, const QString& key)
{
    std::optional<KeyRow> found;
    const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Long);
    for (const KeyRow& row : rows) {
        found = row.keys.first() == key ? row : found;
    }
    return found;
}

milliseconds timeOf(const KeyRow& row)
{
    constexpr int maxSeconds = std::numeric_limits<int>::max() / 1000;
    return std::chrono::seconds(qBound(0, row.seconds, maxSeconds));
}

/// The number of announcements of a long press of `row` in `state`: one for each part with this state.
int countIn(const KeyRow& row, const QString& state)
{
    if (!row.validOnState.contains(QLatin1Char('|'))) {
        return row.validOnState == state ? 1 : 0;
    }
    const QStringList parts = row.validOnState.split(QLatin1Char('|'));
    return static_cast<int>(std::count_if(
        parts.cbegin(), parts.cend(), [&state](const QString& part) { return part.simplified() == state; }));
}

/// The events that stop the time of a held key: presses, releases and the end of a window.
QVector<Place> disturbancesOf(const Facts& facts)
{
    QVector<Place> places = facts.resets();
    for (const KeyInput& input : facts.inputs()) {
        if (input.isPress() || input.isRelease()) {
            places.append(input.place);
        }
    }
    std::sort(places.begin(), places.end());
    return places;
}

/// The repetitions that can start the time of a long press.
QVector<KeyInput> startsOf(const Facts& facts)
{
    QVector<KeyInput> starts;
    for (const KeyInput& input : facts.inputs()) {
        if (input.isRepeat() && rowOf(facts, input.key)) {
            starts.append(input);
        }
    }
    return starts;
}

bool isAttempt(const PlayEvent& event)
{
    return !event.place.isInStep() &&
           (Facts::isRefusal(event) || Facts::isUndefinedReceiver(event) ||
            (Facts::isGesture(event) && !event.text.startsWith(QLatin1String("announce FactoryReset "))));
}

/// The places at which the time of a long press was stopped or expired.
QVector<Place> endsOf(const Facts& facts, const QVector<Place>& disturbances)
{
    QVector<Place> ends = disturbances;
    for (const PlayEvent& event : facts.play().events) {
        if (isAttempt(event)) {
            ends.append(event.place);
        }
    }
    std::sort(ends.begin(), ends.end());
    return ends;
}

/// The last of the sorted `ends` before `place`.
Place lastEnd(const QVector<Place>& ends, const Place& place)
{
    const auto after = std::lower_bound(ends.cbegin(), ends.cend(), place);
    return after == ends.cbegin() ? beginning : *(after - 1);
}

/// Whether `announcement` is its row's time after the first repetition after `end`. Events at the same moment
/// as `end` may be before or after it, and simultaneous repetitions of two keys may have any order.
bool isTimed(const QVector<KeyInput>& starts, const Place& end, const Announcement& announcement,
             milliseconds time)
{
    std::optional<Place> first;
    for (const KeyInput& start : starts) {
        const bool isTied = start.place == end && !end.isInStep();
        if (start.place < end || (start.place == end && !isTied)) {
            continue;
        }
        if (first && !(start.place == *first)) {
            return false;
        }
        if (start.key == announcement.keys.first() && start.at + time == announcement.at) {
            return true;
        }
        first = isTied ? first : start.place;
    }
    return false;
}

/// Likewise, after the last end before `announcement`. An end at the same moment may also have been before
/// it: the end of a window, followed by a repetition with a time of 0.
bool isTimed(const QVector<KeyInput>& starts, const QVector<Place>& ends, const QVector<Place>& disturbances,
             const Announcement& announcement, milliseconds time)
{
    const Place& place = announcement.place;
    const bool isTied = !place.isInStep() && disturbances.contains(place);
    return isTimed(starts, lastEnd(ends, place), announcement, time) ||
           (isTied && isTimed(starts, place, announcement, time));
}

int countOf(const Facts& facts, const KeyRow& row, milliseconds at)
{
    const auto isSame = [&](const Announcement& announcement) {
        return isLongPress(announcement) && announcement.action == row.action && announcement.at == at &&
               announcement.receiver == row.receiver && announcement.keys == row.keys.mid(0, 1);
    };
    return static_cast<int>(
        std::count_if(facts.announcements().cbegin(), facts.announcements().cend(), isSame));
}

/// The repetition that starts a time after `end`, if it is unambiguous.
const KeyInput* firstStart(const QVector<KeyInput>& starts, const Place& end)
{
    const auto isBefore = [](const KeyInput& start, const Place& place) { return start.place < place; };
    const auto first = std::lower_bound(starts.cbegin(), starts.cend(), end, isBefore);
    if (first == starts.cend() || (first->place == end && !end.isInStep())) {
        return nullptr;
    }
    const auto next = first + 1;
    const bool isDoubtful = next != starts.cend() && next->place == first->place;
    return isDoubtful ? nullptr : &*first;
}

QString checkStart(const Facts& facts, const QVector<Place>& disturbances, const KeyInput& start)
{
    const KeyRow row = *rowOf(facts, start.key);
    const milliseconds at = start.at + timeOf(row);
    const Place end =
        timeOf(row) > 0ms ? KeyInputs::timerPlace(facts.script(), at) : Place{start.place.steps, at};
    const auto next = std::upper_bound(disturbances.cbegin(), disturbances.cend(), start.place);
    const bool isDisturbed = next != disturbances.cend() && *next <= end;
    if (at > facts.script().end || isDisturbed || row.receiver == QLatin1String("Undefined")) {
        return {};
    }
    const int due = countIn(row, facts.stateAt(end));
    return countOf(facts, row, at) >= due
               ? QString()
               : QStringLiteral("%1 is missing at %2 ms").arg(row.action).arg(at.count());
}

QVector<milliseconds> dueFactoryResets(const Facts& facts)
{
    QVector<milliseconds> due;
    std::optional<milliseconds> next;
    for (const KeyInput& input : facts.inputs()) {
        if (next && *next <= input.at) {
            due.append(*next);
            next.reset();
        }
        if (input.key == ls::KeyId::FactoryReset && (input.isPress() || input.isRelease())) {
            next = input.isPress() ? std::optional(input.at + factoryResetHold) : std::nullopt;
        }
    }
    if (next && *next <= facts.script().end) {
        due.append(*next);
    }
    return due;
}

} // namespace

namespace invariants {

QString longPressesLastTheirTime(const Facts& facts)
{
    const QVector<Place> disturbances = disturbancesOf(facts);
    const QVector<Place> ends = endsOf(facts, disturbances);
    const QVector<KeyInput> starts = startsOf(facts);
    for (const Announcement& announcement : facts.announcements()) {
        if (!isLongPress(announcement)) {
            continue;
        }
        const auto row = rowOf(facts, announcement.keys.first());
        const auto same = [&](const KeyInput& start) { return start.at == announcement.at - timeOf(*row); };
        const auto times = row ? std::count_if(starts.cbegin(), starts.cend(), same) : 0;
        const bool isRight =
            row && row->action == announcement.action && row->receiver == announcement.receiver &&
            isTimed(starts, ends, disturbances, announcement, timeOf(*row)) &&
            countOf(facts, *row, announcement.at) <= times * countIn(*row, facts.stateAt(announcement.place));
        if (!isRight) {
            return QStringLiteral("%1 at %2 ms").arg(announcement.action).arg(announcement.at.count());
        }
    }
    return {};
}

QString undisturbedLongPressesAreAnnounced(const Facts& facts)
{
    QVector<Place> disturbances = disturbancesOf(facts);
    const QVector<KeyInput> starts = startsOf(facts);
    disturbances.prepend(beginning);
    for (const Place& disturbance : qAsConst(disturbances)) {
        const KeyInput* start = firstStart(starts, disturbance);
        const QString fault = start ? checkStart(facts, disturbances, *start) : QString();
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

QString factoryResetTakesFiveSeconds(const Facts& facts)
{
    QVector<milliseconds> announced;
    for (const Announcement& announcement : facts.announcements()) {
        if (announcement.action == ls::KeyboardActionId::FactoryReset) {
            announced.append(announcement.at);
            if (announcement.receiver != ls::ServiceId::WwwApi ||
                announcement.keys != QStringList(ls::KeyId::FactoryReset) || announcement.place.isInStep()) {
                return QStringLiteral("a factory reset of another shape at %1 ms")
                    .arg(announcement.at.count());
            }
        }
    }
    QVector<milliseconds> spoken;
    for (const PlayEvent& event : facts.play().events) {
        if (event.text == QLatin1String("speak EmbosserMenu 487")) {
            spoken.append(event.at);
        }
    }
    const QVector<milliseconds> due = dueFactoryResets(facts);
    return announced == due && spoken == due ? QString()
                                             : QStringLiteral("%1 announced, %2 spoken, %3 due")
                                                   .arg(announced.size())
                                                   .arg(spoken.size())
                                                   .arg(due.size());
}

} // namespace invariants

// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

const QString undefined = QStringLiteral("Undefined");

bool isRowGesture(const Announcement& announcement)
{
    return !Facts::isSingleKey(announcement) && announcement.action != ls::KeyboardActionId::FactoryReset;
}

QStringList announcedKeys(const KeyRow& row)
{
    return row.kind == KeyRow::Kind::Long ? row.keys.mid(0, 1)
                                          : QStringList{row.keys.first(), row.keys.last()};
}

bool isOneOf(const KeyRow& row, const Announcement& announcement)
{
    return !row.keys.isEmpty() && row.action == announcement.action &&
           row.receiver == announcement.receiver && row.receiver != undefined &&
           announcedKeys(row) == announcement.keys;
}

bool isValid(const KeyRow& row, const QString& state)
{
    if (row.kind != KeyRow::Kind::Long || !row.validOnState.contains(QLatin1Char('|'))) {
        return row.validOnState == state;
    }
    const QStringList parts = row.validOnState.split(QLatin1Char('|'));
    return std::any_of(parts.cbegin(), parts.cend(),
                       [&state](const QString& part) { return part.simplified() == state; });
}

/// "ACTION RECEIVER FIRST LAST", which identifies gestures of two keys.
QString nameOf(const KeyRow& row)
{
    return QStringList{row.action, row.receiver, row.keys.first(), row.keys.last()}.join(QLatin1Char(' '));
}

QStringList pairsAnnouncedIn(const Facts& facts, int step)
{
    QStringList names;
    const QVector<Announcement> announcements = facts.announcedIn(step);
    for (const Announcement& announcement : announcements) {
        if (isRowGesture(announcement)) {
            names.append(announcement.action + QLatin1Char(' ') + announcement.receiver + QLatin1Char(' ') +
                         announcement.keys.join(QLatin1Char(' ')));
        }
    }
    return names;
}

bool isShort(const KeyRow& row)
{
    return row.keys.size() <= 2;
}

bool isTyped(const KeyRow& row, const FedKey& fed)
{
    if (row.keys.last() != fed.key || fed.opening.isEmpty()) {
        return false;
    }
    if (isShort(row)) {
        return row.keys.first() == fed.opening;
    }
    // The key "Unknown" means that no row is open, so a row that starts with it may have gaps.
    return row.keys.first() == ls::KeyId::Unknown ||
           fed.since.mid(fed.since.size() - row.keys.size()) == row.keys;
}

/// The rows that the key definitely completes: those before the first longer one.
QStringList dueCombinations(const Facts& facts, const FedKey& fed)
{
    QStringList due;
    const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Modifier);
    const auto firstLong = std::find_if_not(rows.cbegin(), rows.cend(), isShort);
    std::for_each(rows.cbegin(), firstLong, [&](const KeyRow& row) {
        const bool isSent = row.receiver != undefined && isValid(row, facts.stateAt(Place::ofStep(fed.step)));
        if (isSent && isTyped(row, fed)) {
            due.append(nameOf(row));
        }
    });
    return due;
}

QStringList dueShortcut(const Facts& facts, const FedKey& fed)
{
    const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Shortcut);
    const auto row = std::find_if(rows.cbegin(), rows.cend(), [&fed](const KeyRow& candidate) {
        return candidate.keys.first() == fed.opening && candidate.keys.last() == fed.key;
    });
    const bool isSent = row != rows.cend() && !fed.opening.isEmpty() && row->receiver != undefined &&
                        isValid(*row, facts.stateAt(Place::ofStep(fed.step)));
    return isSent ? QStringList(nameOf(*row)) : QStringList();
}

using Due = QStringList (*)(const Facts&, const FedKey&);

QMap<int, QStringList> dueInSteps(const Facts& facts, const QVector<FedKey>& feeds, Due due)
{
    QMap<int, QStringList> steps;
    for (const FedKey& fed : feeds) {
        steps[fed.step] += due(facts, fed);
    }
    return steps;
}

bool isSubsequence(const QStringList& part, const QStringList& whole)
{
    int found = 0;
    for (const QString& item : whole) {
        found += found < part.size() && part.at(found) == item ? 1 : 0;
    }
    return found == part.size();
}

QString unexpected(int step, const QStringList& announced, const QStringList& due)
{
    return QStringLiteral("step %1 announces \"%2\", not \"%3\"")
        .arg(step)
        .arg(announced.join(QStringLiteral(", ")), due.join(QStringLiteral(", ")));
}

} // namespace

namespace invariants {

QString gesturesAreRowsOfTheLists(const Facts& facts)
{
    for (const Announcement& announcement : facts.announcements()) {
        const QString state = facts.stateAt(announcement.place);
        const auto fits = [&](const KeyRow& row) {
            return isOneOf(row, announcement) && isValid(row, state);
        };
        const QVector<KeyRow>& rows = facts.script().rows;
        if (isRowGesture(announcement) && std::none_of(rows.cbegin(), rows.cend(), fits)) {
            return QStringLiteral("%1 at %2 ms in state %3")
                .arg(announcement.action)
                .arg(announcement.at.count())
                .arg(state);
        }
    }
    return {};
}

QString refusalsNameTheStates(const Facts& facts)
{
    static const QRegularExpression states(
        QStringLiteral("is:  \"(.*)\" , but current state is:  \"(.*)\" !\\?$"));
    for (const PlayEvent& event : facts.play().events) {
        if (!Facts::isRefusal(event)) {
            continue;
        }
        const QRegularExpressionMatch match = states.match(event.text);
        const QString state = facts.stateAt(event.place);
        if (!match.hasMatch() || match.captured(2) != state || match.captured(1) == state) {
            return described(event);
        }
    }
    return {};
}

QString combinationsWereOpened(const Facts& facts)
{
    for (const Announcement& announcement : facts.announcements()) {
        const auto isOfStep = [&](const FedKey& fed) {
            return Place::ofStep(fed.step) == announcement.place;
        };
        const QVector<FedKey>& presses = facts.fedShortcuts();
        const bool isCombination = isRowGesture(announcement) && announcement.place.isInStep() &&
                                   std::none_of(presses.cbegin(), presses.cend(), isOfStep);
        const auto isTypedNow = [&](const FedKey& fed) {
            const auto fits = [&](const KeyRow& row) {
                return isOneOf(row, announcement) && isTyped(row, fed);
            };
            const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Modifier);
            return isOfStep(fed) && std::any_of(rows.cbegin(), rows.cend(), fits);
        };
        const QVector<FedKey>& feeds = facts.fedCombinations();
        if (isCombination && std::none_of(feeds.cbegin(), feeds.cend(), isTypedNow)) {
            return QStringLiteral("%1 at %2 ms was not typed")
                .arg(announcement.action)
                .arg(announcement.at.count());
        }
    }
    return {};
}

QString earlyShortRowsAlwaysCombine(const Facts& facts)
{
    const QMap<int, QStringList> steps = dueInSteps(facts, facts.fedCombinations(), dueCombinations);
    const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Modifier);
    const bool areAllShort = std::all_of(rows.cbegin(), rows.cend(), isShort);
    for (auto step = steps.cbegin(); step != steps.cend(); ++step) {
        const QStringList announced = pairsAnnouncedIn(facts, step.key());
        if (areAllShort ? announced != step.value() : !isSubsequence(step.value(), announced)) {
            return unexpected(step.key(), announced, step.value());
        }
    }
    return {};
}

QString shortcutsNeedTheirOpeningKey(const Facts& facts)
{
    const QMap<int, QStringList> steps = dueInSteps(facts, facts.fedShortcuts(), dueShortcut);
    for (auto step = steps.cbegin(); step != steps.cend(); ++step) {
        const QStringList announced = pairsAnnouncedIn(facts, step.key());
        if (announced != step.value()) {
            return unexpected(step.key(), announced, step.value());
        }
    }
    return {};
}

} // namespace invariants

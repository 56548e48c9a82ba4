// SPDX-License-Identifier: MIT
#include "card/NeverReasons.h"

#include "card/CardGestures.h"
#include "keys/KeyRules.h"
#include "model/KeyFacts.h"
#include "model/Playback.h"

#include <ls/Identifiers.h>

using namespace model;

namespace {

QString number(int index)
{
    return QString::number(index + 1);
}

/// A sentence if there are no keys, or one that the panel does not have; empty otherwise.
QString missingKeys(const QStringList& keys)
{
    if (keys.isEmpty()) {
        return QStringLiteral("The row has no keys.");
    }
    for (const QString& name : keys) {
        const auto key = Alphabet::keyOf(name);
        if (!key || !Alphabet::isOnPanel(*key)) {
            return QStringLiteral("The panel has no key \"%1\".").arg(name);
        }
    }
    return {};
}

/// Names the row that is always preferred to `row`; empty if there is none. `row` has keys of the panel.
QString preferredRow(const KeyModel& keyModel, RowId row)
{
    const RowTables& rows = keyModel.rows();
    const KeyEntry& entry = keyModel.lists().row(row);
    const Key first = *Alphabet::keyOf(entry.firstKey());
    if (row.list == List::LongPresses && rows.longPressOf(first) != row.index) {
        return QStringLiteral("Only the last row for a key works; for %1, that is row %2.")
            .arg(entry.firstKey(), number(rows.longPressOf(first)));
    }
    if (row.list == List::Shortcuts) {
        const int completed = rows.shortcutOf(first, *Alphabet::keyOf(entry.lastKey()));
        return completed == row.index
                   ? QString()
                   : QStringLiteral(
                         "Only the first row for a pair of keys works; for %1 and %2, that is row %3.")
                         .arg(entry.firstKey(), entry.lastKey(), number(completed));
    }
    if (row.list == List::Combinations && entry.isSequence() && rows.firstSequence() != row.index) {
        return QStringLiteral("Only the first row of three or more keys can match, and that is row %1.")
            .arg(number(rows.firstSequence()));
    }
    return {};
}

/// The row of a pair that is complete after some keys of the first row of three or more keys; -1 without one.
int breakingPair(const KeyModel& keyModel, QStringList keys)
{
    if (keys.first() == ls::KeyId::Menu) {
        keys.prepend(ls::KeyId::Help); // otherwise Menu is announced and forgotten
    }
    Playback playback(keyModel, KeyFacts::idle);
    for (const QString& name : qAsConst(keys)) {
        playback.press(*Alphabet::keyOf(name));
        playback.release(*Alphabet::keyOf(name));
    }
    for (const PlayedStep& step : playback.steps()) {
        const bool hasBegun = step.before.sequence > 0 && step.before.sequence != Situation::dead;
        for (const Effect& effect : step.effects) {
            if (hasBegun && effect.rule == Rule::CombinationCompletes) {
                return effect.row.index;
            }
        }
    }
    return -1;
}

QString whyNotCompleted(const KeyModel& keyModel, int combination)
{
    const KeyEntry& row = keyModel.lists().combinations.at(combination);
    const int second = keyModel.rows().secondSequence();
    const int hiding = second >= 0 && combination > second ? second : keyModel.rows().firstSequence();
    if (!row.isSequence() && hiding >= 0 && combination > hiding) {
        return QStringLiteral("Row %1 has three or more keys and hides this row.").arg(number(hiding));
    }
    const int pair = row.isSequence() ? breakingPair(keyModel, row.keys()) : -1;
    return pair < 0
               ? QStringLiteral("Menu is announced at its release, and all keys before it are forgotten.")
               : QStringLiteral("Row %1 is complete with %2 and breaks the sequence.")
                     .arg(number(pair), keyModel.lists().combinations.at(pair).lastKey());
}

/// Empty if a row of `list` that names `state` may be announced in it.
QString whyNotIn(const QString& name, List list)
{
    const auto state = Alphabet::stateOf(name);
    if (state == KeyFacts::startup) {
        return QStringLiteral("Keys are ignored in Startup, except for a long press that began before.");
    }
    if (state) {
        return list == List::Combinations && *state != KeyFacts::idle
                   ? QStringLiteral(
                         "No combination can begin in %1: each key is announced and forgotten there.")
                         .arg(name)
                   : QString();
    }
    if (list != List::LongPresses && name.contains(KeyRules::stateSeparator)) {
        return QStringLiteral("Only a long press can join states; \"%1\" is not a state.").arg(name);
    }
    return QStringLiteral("Unknown state \"%1\".").arg(name);
}

} // namespace

QString NeverReasons::of(const KeyModel& keyModel, RowId row)
{
    const KeyLists& lists = keyModel.lists();
    const QString missing = missingKeys(CardGestures::keysOf(lists.row(row), row.list));
    if (!missing.isEmpty()) {
        return missing;
    }
    const QString preferred = preferredRow(keyModel, row);
    if (!preferred.isEmpty()) {
        return preferred;
    }
    if (keyModel.rows().delivery(row).isDropped) {
        return QStringLiteral("The action is dropped, because its receiver is \"Undefined\".");
    }
    const QStringList reasons = byState(lists, row);
    return reasons.contains(QString()) ? whyNotCompleted(keyModel, row.index)
                                       : reasons.join(QLatin1Char(' '));
}

QStringList NeverReasons::byState(const KeyLists& lists, RowId row)
{
    QStringList reasons;
    const QStringList states = lists.statesOf(row);
    for (const QString& state : states) {
        reasons.append(whyNotIn(state, row.list));
    }
    reasons.removeDuplicates();
    return reasons;
}

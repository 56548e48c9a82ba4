// SPDX-License-Identifier: MIT
#include "workbench/card/KeyCard.h"

#include "keys/KeyRules.h"
#include "simulator/panel/Autorepeat.h"
#include "vocabulary/Vocabulary.h"
#include "workbench/card/CardConsequences.h"
#include "workbench/card/CardLists.h"
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowFate.h"

#include <ls/Identifiers.h>

#include <algorithm>

namespace {

/// The time of a long press begins with the first repetition.
constexpr int repeatDelayMs = int(Autorepeat::delay.count());
constexpr int factoryResetHoldMs = int(KeyRules::factoryResetHold.count());

/// A row of one of the lists, and what becomes of it.
struct JudgedRow
{
    KeyCardKind kind;
    int number;
    KeyEntry row;
    RowFate fate;
};

using JudgedRows = QVector<JudgedRow>;

void append(JudgedRows& judged, KeyCardKind kind, const QList<KeyEntry>& rows, const QVector<RowFate>& fates)
{
    for (int i = 0; i < rows.size(); ++i) {
        judged.append({kind, i + 1, rows.at(i), fates.at(i)});
    }
}

JudgedRows judge(const CardLists& lists)
{
    JudgedRows rows;
    append(rows, KeyCardKind::Long, lists.longPresses, RowFates::ofLongPresses(lists.longPresses));
    append(rows, KeyCardKind::Combination, lists.combinations, RowFates::ofCombinations(lists.combinations));
    append(rows, KeyCardKind::Shortcut, lists.shortcuts, RowFates::ofShortcuts(lists.shortcuts));
    return rows;
}

KeyCardEntry singleKey(const QString& key, const QString& state, bool isOrvane)
{
    return {KeyCardKind::Single,
            {key},
            0,
            ls::KeyboardActionId::SingleKey,
            KeyRules::singleKeyReceivers(key, state),
            1,
            {CardConsequences::ofSingleKey(key, state, isOrvane)},
            {}};
}

KeyCardEntry gesture(const JudgedRow& judged, const QString& state)
{
    const int holdMs =
        judged.kind == KeyCardKind::Long ? repeatDelayMs + std::max(0, judged.row.timeout()) : 0;
    KeyCardEntry entry{judged.kind,
                       judged.fate.keys,
                       holdMs,
                       judged.row.eAction(),
                       {judged.row.receiverService()},
                       judged.fate.states.count(state),
                       {},
                       judged.fate.notes};
    entry.consequences = CardConsequences::ofGesture(entry, state);
    return entry;
}

KeyCardEntry factoryReset(const QString& state)
{
    KeyCardEntry entry{KeyCardKind::Hold,
                       {ls::KeyId::FactoryReset},
                       factoryResetHoldMs,
                       ls::KeyboardActionId::FactoryReset,
                       {ls::ServiceId::WwwApi},
                       1,
                       {},
                       {}};
    entry.consequences = CardConsequences::ofGesture(entry, state);
    return entry;
}

KeyCardState stateCard(const QString& state, const JudgedRows& rows, bool isOrvane)
{
    KeyCardState card{state, {}};
    if (CardVocabulary::hasKeys(state)) {
        for (const QString& key : CardVocabulary::panelKeys()) {
            card.entries.append(singleKey(key, state, isOrvane));
        }
        for (const JudgedRow& row : rows) {
            if (row.fate.states.contains(state)) {
                card.entries.append(gesture(row, state));
            }
        }
        card.entries.append(factoryReset(state));
    }
    return card;
}

bool isNamed(const QString& state, const JudgedRows& rows)
{
    return std::any_of(rows.cbegin(), rows.cend(),
                       [&state](const JudgedRow& row) { return row.fate.states.contains(state); });
}

QVector<KeyCardNever> neverOf(const JudgedRows& rows)
{
    QVector<KeyCardNever> never;
    for (const JudgedRow& judged : rows) {
        if (!judged.fate.why.isEmpty()) {
            never.append({judged.kind, judged.number, judged.row.keys(), judged.row.eAction(),
                          judged.row.receiverService(), judged.row.validOnState(), judged.fate.why});
        }
    }
    return never;
}

} // namespace

KeyCard KeyCard::from(const QMap<QString, QByteArray>& keyLists, const QString& model)
{
    const CardLists lists = CardLists::read(keyLists);
    const JudgedRows rows = judge(lists);
    KeyCard card{model, {}, neverOf(rows), lists.notes};
    for (const QString& state : CardVocabulary::states()) {
        if (state != vocabulary::undefined || isNamed(state, rows)) {
            card.states.append(stateCard(state, rows, model == QLatin1String("Orvane")));
        }
    }
    return card;
}

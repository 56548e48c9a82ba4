// SPDX-License-Identifier: MIT
#include "workbench/card/KeyCard.h"

#include "keys/KeyRules.h"
#include "model/Autorepeat.h"
#include "vocabulary/Vocabulary.h"
#include "workbench/card/CardConsequences.h"
#include "workbench/card/CardLists.h"
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowOutcome.h"

#include <ls/Identifiers.h>

#include <algorithm>

namespace {

/// The time of a long press starts at the first repetition.
constexpr int repeatDelayMs = int(Autorepeat::delay.count());
constexpr int factoryResetHoldMs = int(KeyRules::factoryResetHold.count());

struct EvaluatedRow
{
    KeyCardKind kind;
    int number;
    KeyEntry row;
    RowOutcome outcome;
};

using EvaluatedRows = QVector<EvaluatedRow>;

void append(EvaluatedRows& evaluated, KeyCardKind kind, const QList<KeyEntry>& rows,
            const QVector<RowOutcome>& outcomes)
{
    for (int i = 0; i < rows.size(); ++i) {
        evaluated.append({kind, i + 1, rows.at(i), outcomes.at(i)});
    }
}

EvaluatedRows evaluate(const CardLists& lists)
{
    EvaluatedRows rows;
    append(rows, KeyCardKind::Long, lists.longPresses, RowOutcomes::ofLongPresses(lists.longPresses));
    append(rows, KeyCardKind::Combination, lists.combinations,
           RowOutcomes::ofCombinations(lists.combinations));
    append(rows, KeyCardKind::Shortcut, lists.shortcuts, RowOutcomes::ofShortcuts(lists.shortcuts));
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

KeyCardEntry gesture(const EvaluatedRow& evaluated, const QString& state)
{
    const int holdMs =
        evaluated.kind == KeyCardKind::Long ? repeatDelayMs + std::max(0, evaluated.row.timeout()) : 0;
    KeyCardEntry entry{evaluated.kind,
                       evaluated.outcome.keys,
                       holdMs,
                       evaluated.row.eAction(),
                       {evaluated.row.receiverService()},
                       evaluated.outcome.states.count(state),
                       {},
                       evaluated.outcome.notes};
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

KeyCardState stateCard(const QString& state, const EvaluatedRows& rows, bool isOrvane)
{
    KeyCardState card{state, {}};
    if (CardVocabulary::acceptsKeys(state)) {
        for (const QString& key : CardVocabulary::panelKeys()) {
            card.entries.append(singleKey(key, state, isOrvane));
        }
        for (const EvaluatedRow& row : rows) {
            if (row.outcome.states.contains(state)) {
                card.entries.append(gesture(row, state));
            }
        }
        card.entries.append(factoryReset(state));
    }
    return card;
}

bool isUsed(const QString& state, const EvaluatedRows& rows)
{
    return std::any_of(rows.cbegin(), rows.cend(),
                       [&state](const EvaluatedRow& row) { return row.outcome.states.contains(state); });
}

QVector<KeyCardDeadRow> deadRowsOf(const EvaluatedRows& rows)
{
    QVector<KeyCardDeadRow> deadRows;
    for (const EvaluatedRow& evaluated : rows) {
        if (!evaluated.outcome.why.isEmpty()) {
            deadRows.append({evaluated.kind, evaluated.number, evaluated.row.keys(), evaluated.row.eAction(),
                             evaluated.row.receiverService(), evaluated.row.validOnState(),
                             evaluated.outcome.why});
        }
    }
    return deadRows;
}

} // namespace

KeyCard KeyCard::from(const QMap<QString, QByteArray>& keyLists, const QString& model)
{
    const CardLists lists = CardLists::read(keyLists);
    const EvaluatedRows rows = evaluate(lists);
    KeyCard card{model, {}, deadRowsOf(rows), lists.notes};
    for (const QString& state : CardVocabulary::states()) {
        if (state != vocabulary::undefined || isUsed(state, rows)) {
            card.states.append(stateCard(state, rows, model == QLatin1String("Orvane")));
        }
    }
    return card;
}

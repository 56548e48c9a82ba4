// SPDX-License-Identifier: MIT
#include "card/CardJson.h"

#include "card/CardSentences.h"
#include "card/CardStatements.h"

#include <QJsonArray>

namespace {

QJsonObject toJson(const KeyCardEntry& entry);
QJsonObject toJson(const KeyCardState& state);
QJsonObject toJson(const KeyCardDeadRow& row);

template <typename Item>
QJsonArray toArray(const QVector<Item>& items)
{
    QJsonArray array;
    for (const Item& item : items) {
        array.append(toJson(item));
    }
    return array;
}

QJsonObject describe(const KeyCardEntry& entry)
{
    return {{QStringLiteral("kind"), CardSentences::nameOf(entry.kind)},
            {QStringLiteral("keys"), QJsonArray::fromStringList(entry.keys)},
            {QStringLiteral("how"), CardSentences::how(entry)},
            {QStringLiteral("action"), entry.action},
            {QStringLiteral("receivers"), QJsonArray::fromStringList(entry.receivers)},
            {QStringLiteral("notes"), QJsonArray::fromStringList(CardSentences::notesOf(entry))}};
}

QJsonObject toJson(const KeyCardEntry& entry)
{
    QJsonObject object = describe(entry);
    object.insert(QStringLiteral("statements"), QJsonArray::fromStringList(CardStatements::of(entry)));
    if (entry.holdMs > 0) {
        object.insert(QStringLiteral("holdMs"), entry.holdMs);
    }
    return object;
}

QJsonArray joinedSingleKeys(const QVector<KeyCardEntry>& entries)
{
    QJsonArray array;
    for (const KeyCardEntry& entry : CardSentences::withSingleKeysJoined(entries)) {
        if (entry.kind == KeyCardKind::Single) {
            array.append(describe(entry));
        }
    }
    return array;
}

QJsonObject toJson(const KeyCardState& state)
{
    return {{QStringLiteral("state"), state.state},
            {QStringLiteral("entries"), toArray(state.entries)},
            {QStringLiteral("singleKeys"), joinedSingleKeys(state.entries)},
            {QStringLiteral("notes"), QJsonArray::fromStringList(CardSentences::notesOf(state))}};
}

QJsonObject toJson(const KeyCardDeadRow& row)
{
    return {{QStringLiteral("kind"), CardSentences::nameOf(row.kind)},
            {QStringLiteral("row"), row.row},
            {QStringLiteral("keys"), QJsonArray::fromStringList(row.keys)},
            {QStringLiteral("action"), row.action},
            {QStringLiteral("receiver"), row.receiver},
            {QStringLiteral("validOnState"), row.validOnState},
            {QStringLiteral("why"), row.why},
            {QStringLiteral("proof"), QJsonObject{{QStringLiteral("situations"), double(row.situations)},
                                                  {QStringLiteral("steps"), double(row.steps)}}}};
}

} // namespace

QJsonObject toJson(const KeyCard& card)
{
    return {{QStringLiteral("model"), card.model},
            {QStringLiteral("states"), toArray(card.states)},
            {QStringLiteral("never"), toArray(card.deadRows)},
            {QStringLiteral("environment"), card.environment},
            {QStringLiteral("notes"), QJsonArray::fromStringList(card.notes)}};
}

// SPDX-License-Identifier: MIT
#include "workbench/card/RowDelivery.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"
#include "workbench/card/CardVocabulary.h"

#include <ls/Identifiers.h>

namespace {

QString whyIgnoredIn(const QString& state)
{
    if (state == ls::StateId::Startup) {
        return QStringLiteral("Keys are ignored in Startup, except for a long press that began before.");
    }
    if (CardVocabulary::acceptsKeys(state)) {
        return QStringLiteral("No combination can begin in %1: each key is announced and forgotten there.")
            .arg(state);
    }
    if (state.contains(KeyRules::stateSeparator)) {
        return QStringLiteral("Only a long press can join states; \"%1\" is not a state.").arg(state);
    }
    return QStringLiteral("Unknown state \"%1\".").arg(state);
}

} // namespace

RowOutcome RowDelivery::never(const QString& why)
{
    RowOutcome outcome;
    outcome.why = why;
    return outcome;
}

QString RowDelivery::missingKeys(const QStringList& keys)
{
    if (keys.isEmpty()) {
        return QStringLiteral("The row has no keys.");
    }
    for (const QString& key : keys) {
        if (!CardVocabulary::isPanelKey(key)) {
            return QStringLiteral("The panel has no key \"%1\".").arg(key);
        }
    }
    return {};
}

RowOutcome RowDelivery::of(const KeyEntry& row, const QStringList& keys, const QStringList& named,
                           bool (*isPossible)(const QString& state))
{
    if (row.receiverService() == vocabulary::undefined) {
        return never(QStringLiteral("The action is dropped, because its receiver is \"Undefined\"."));
    }
    RowOutcome outcome;
    outcome.keys = keys;
    for (const QString& state : named) {
        if (isPossible(state)) {
            outcome.states.append(state);
        } else {
            outcome.notes.append(whyIgnoredIn(state));
        }
    }
    outcome.notes.removeDuplicates();
    return outcome.states.isEmpty() ? never(outcome.notes.join(QLatin1Char(' '))) : outcome;
}

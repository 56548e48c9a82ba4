// SPDX-License-Identifier: MIT
#include "workbench/card/RowDelivery.h"

#include "keys/KeyRules.h"
#include "vocabulary/Vocabulary.h"
#include "workbench/card/CardVocabulary.h"

#include <ls/Identifiers.h>

namespace {

QString whyNotIn(const QString& state)
{
    if (state == ls::StateId::Startup) {
        return QStringLiteral("No key counts in Startup.");
    }
    if (CardVocabulary::hasKeys(state)) {
        return QStringLiteral("No combination can begin in %1: each key is announced and forgotten there.")
            .arg(state);
    }
    if (state.contains(KeyRules::stateSeparator)) {
        return QStringLiteral("Only a long press can join states: there is no state \"%1\".").arg(state);
    }
    return QStringLiteral("There is no state \"%1\".").arg(state);
}

} // namespace

RowFate RowDelivery::never(const QString& why)
{
    RowFate fate;
    fate.why = why;
    return fate;
}

QString RowDelivery::missingKeys(const QStringList& keys)
{
    if (keys.isEmpty()) {
        return QStringLiteral("The row names no key.");
    }
    for (const QString& key : keys) {
        if (!CardVocabulary::isPanelKey(key)) {
            return QStringLiteral("The panel has no key \"%1\".").arg(key);
        }
    }
    return {};
}

RowFate RowDelivery::of(const KeyEntry& row, const QStringList& keys, const QStringList& named,
                        bool (*isPossible)(const QString& state))
{
    if (row.receiverService() == vocabulary::undefined) {
        return never(QStringLiteral("The action is dropped, because its receiver is \"Undefined\"."));
    }
    RowFate fate;
    fate.keys = keys;
    for (const QString& state : named) {
        if (isPossible(state)) {
            fate.states.append(state);
        } else {
            fate.notes.append(whyNotIn(state));
        }
    }
    fate.notes.removeDuplicates();
    return fate.states.isEmpty() ? never(fate.notes.join(QLatin1Char(' '))) : fate;
}

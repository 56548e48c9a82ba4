// SPDX-License-Identifier: MIT
#include "keys/KeyRules.h"
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowDelivery.h"

#include <QHash>

namespace {

RowOutcome longPressOutcome(const KeyEntry& row, bool isLast, int lastNumber)
{
    const QStringList keys = row.keys().mid(0, 1);
    const QString missing = RowDelivery::missingKeys(keys);
    if (!missing.isEmpty()) {
        return RowDelivery::never(missing);
    }
    if (!isLast) {
        return RowDelivery::never(QStringLiteral("Only the last row for a key works; for %1, that is row %2.")
                                      .arg(keys.first(), QString::number(lastNumber)));
    }
    return RowDelivery::of(row, keys, KeyRules::longPressStates(row.validOnState()),
                           CardVocabulary::acceptsKeys);
}

} // namespace

QVector<RowOutcome> RowOutcomes::ofLongPresses(const QList<KeyEntry>& rows)
{
    QHash<QString, int> lastOf;
    for (int i = 0; i < rows.size(); ++i) {
        lastOf.insert(rows.at(i).firstKey(), i);
    }
    QVector<RowOutcome> outcomes;
    for (int i = 0; i < rows.size(); ++i) {
        const int last = lastOf.value(rows.at(i).firstKey());
        outcomes.append(longPressOutcome(rows.at(i), last == i, last + 1));
    }
    return outcomes;
}

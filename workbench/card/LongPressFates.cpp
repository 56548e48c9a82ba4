// SPDX-License-Identifier: MIT
#include "keys/KeyRules.h"
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowDelivery.h"

#include <QHash>

namespace {

RowFate fateOf(const KeyEntry& row, bool decides, int decidingNumber)
{
    const QStringList keys = row.keys().mid(0, 1);
    const QString missing = RowDelivery::missingKeys(keys);
    if (!missing.isEmpty()) {
        return RowDelivery::never(missing);
    }
    if (!decides) {
        return RowDelivery::never(QStringLiteral("The last row for a key decides, and for %1 that is row %2.")
                                      .arg(keys.first(), QString::number(decidingNumber)));
    }
    return RowDelivery::of(row, keys, KeyRules::longPressStates(row.validOnState()), CardVocabulary::hasKeys);
}

} // namespace

QVector<RowFate> RowFates::ofLongPresses(const QList<KeyEntry>& rows)
{
    QHash<QString, int> lastOf;
    for (int i = 0; i < rows.size(); ++i) {
        lastOf.insert(rows.at(i).firstKey(), i);
    }
    QVector<RowFate> fates;
    for (int i = 0; i < rows.size(); ++i) {
        const int deciding = lastOf.value(rows.at(i).firstKey());
        fates.append(fateOf(rows.at(i), deciding == i, deciding + 1));
    }
    return fates;
}

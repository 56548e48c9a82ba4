// SPDX-License-Identifier: MIT
#include "workbench/card/CardVocabulary.h"
#include "workbench/card/RowDelivery.h"

#include <QHash>
#include <QPair>

namespace {

using Ends = QPair<QString, QString>;

Ends endsOf(const KeyEntry& row)
{
    return {row.firstKey(), row.lastKey()};
}

RowFate fateOf(const KeyEntry& row, bool counts, int countingNumber)
{
    const QStringList keys = row.isValid() ? QStringList{row.firstKey(), row.lastKey()} : QStringList{};
    const QString missing = RowDelivery::missingKeys(keys);
    if (!missing.isEmpty()) {
        return RowDelivery::never(missing);
    }
    if (!counts) {
        return RowDelivery::never(
            QStringLiteral("The first row for a pair of keys counts, and for %1 and %2 that is row %3.")
                .arg(keys.first(), keys.last(), QString::number(countingNumber)));
    }
    return RowDelivery::of(row, keys, {row.validOnState()}, CardVocabulary::hasKeys);
}

} // namespace

QVector<RowFate> RowFates::ofShortcuts(const QList<KeyEntry>& rows)
{
    QHash<Ends, int> firstOf;
    for (int i = rows.size() - 1; i >= 0; --i) {
        firstOf.insert(endsOf(rows.at(i)), i);
    }
    QVector<RowFate> fates;
    for (int i = 0; i < rows.size(); ++i) {
        const int counting = firstOf.value(endsOf(rows.at(i)));
        fates.append(fateOf(rows.at(i), counting == i, counting + 1));
    }
    return fates;
}

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

RowOutcome shortcutOutcome(const KeyEntry& row, bool isFirst, int firstNumber)
{
    const QStringList keys = row.isValid() ? QStringList{row.firstKey(), row.lastKey()} : QStringList{};
    const QString missing = RowDelivery::missingKeys(keys);
    if (!missing.isEmpty()) {
        return RowDelivery::never(missing);
    }
    if (!isFirst) {
        return RowDelivery::never(
            QStringLiteral("Only the first row for a pair of keys works; for %1 and %2, that is row %3.")
                .arg(keys.first(), keys.last(), QString::number(firstNumber)));
    }
    return RowDelivery::of(row, keys, {row.validOnState()}, CardVocabulary::acceptsKeys);
}

} // namespace

QVector<RowOutcome> RowOutcomes::ofShortcuts(const QList<KeyEntry>& rows)
{
    QHash<Ends, int> firstOf;
    for (int i = rows.size() - 1; i >= 0; --i) {
        firstOf.insert(endsOf(rows.at(i)), i);
    }
    QVector<RowOutcome> outcomes;
    for (int i = 0; i < rows.size(); ++i) {
        const int first = firstOf.value(endsOf(rows.at(i)));
        outcomes.append(shortcutOutcome(rows.at(i), first == i, first + 1));
    }
    return outcomes;
}

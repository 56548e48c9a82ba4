// SPDX-License-Identifier: MIT
#include "simulator/card/CardVocabulary.h"
#include "simulator/card/RowDelivery.h"

#include <QHash>

namespace {

constexpr QLatin1Char separator('|');

/// As the recogniser has it: only joined states are trimmed.
QStringList namedStates(const KeyEntry& row)
{
    if (!row.validOnState().contains(separator)) {
        return {row.validOnState()};
    }
    QStringList states = row.validOnState().split(separator, Qt::KeepEmptyParts);
    for (QString& state : states) {
        state = state.simplified();
    }
    return states;
}

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
    return RowDelivery::of(row, keys, namedStates(row), CardVocabulary::hasKeys);
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

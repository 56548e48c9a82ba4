// SPDX-License-Identifier: MIT
#include "checker/SameKeys.h"

#include "keys/KeyListFile.h"

#include <QHash>

namespace checker {

using model::List;
using model::RowId;

namespace {

/// What two rows with the same gesture in the same state have in common. A pair is recognised by its first
/// and last key, a longer row by all keys.
QStringList gestureOf(const KeyEntry& row)
{
    const QStringList keys = row.isSequence() ? row.keys() : QStringList{row.firstKey(), row.lastKey()};
    return keys + QStringList(row.validOnState());
}

} // namespace

QVector<Finding> SameKeys::of(const model::KeyLists& lists, const RowPlaces& places,
                              const QVector<RowId>& rows)
{
    QVector<Finding> findings;
    QHash<QStringList, int> first;
    for (const RowId id : rows) {
        if (id.list != List::Combinations) {
            continue;
        }
        const QStringList gesture = gestureOf(lists.row(id));
        if (first.contains(gesture)) {
            Finding finding;
            finding.id = QStringLiteral("same-keys");
            finding.row = id;
            finding.place = places.member(finding.row, KeyListFields::keys);
            const RowId other{List::Combinations, first.value(gesture)};
            finding.message = QStringLiteral("row %1 has the same keys, and both actions are announced")
                                  .arg(other.index + 1);
            finding.related.append(places.member(other, KeyListFields::keys));
            finding.related.last().remark = QStringLiteral("row %1").arg(other.index + 1);
            findings.append(finding);
        } else {
            first.insert(gesture, id.index);
        }
    }
    return findings;
}

} // namespace checker

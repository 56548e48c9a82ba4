// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QList>
#include <QStringList>
#include <QVector>

/// The result of pressing the keys of one row while the state stays the same.
struct RowOutcome
{
    /// In the order of pressing; they may include keys that are not in the row.
    QStringList keys;
    /// The states in which the action is announced, repeated for each announcement.
    QStringList states;
    /// Sentences about states of the row in which the action is not announced.
    QStringList notes;
    /// Why the row never works, as a sentence; empty if it works.
    QString why;
};

/// The outcomes of all rows of a list, in the order of the rows. Rows affect each other, so they must be
/// evaluated together.
namespace RowOutcomes {

QVector<RowOutcome> ofLongPresses(const QList<KeyEntry>& rows);
QVector<RowOutcome> ofCombinations(const QList<KeyEntry>& rows);
QVector<RowOutcome> ofShortcuts(const QList<KeyEntry>& rows);

} // namespace RowOutcomes

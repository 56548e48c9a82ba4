// SPDX-License-Identifier: MIT
#pragma once

#include "keys/KeyEntry.h"

#include <QList>
#include <QStringList>
#include <QVector>

/// What becomes of one row of a key list when people press keys and the state stays as it is.
struct RowFate
{
    /// The keys to press, in their order; they may be more than the row names.
    QStringList keys;
    /// The states in which the action is announced; a state that is in it twice has it announced twice.
    QStringList states;
    /// Sentences about states that the row names in vain.
    QStringList notes;
    /// A sentence on why the row never works; empty when it does.
    QString why;
};

/// The fates of all rows of a list, in the order of the rows. Rows must be judged together, because they
/// decide about each other.
namespace RowFates {

QVector<RowFate> ofLongPresses(const QList<KeyEntry>& rows);
QVector<RowFate> ofCombinations(const QList<KeyEntry>& rows);
QVector<RowFate> ofShortcuts(const QList<KeyEntry>& rows);

} // namespace RowFates

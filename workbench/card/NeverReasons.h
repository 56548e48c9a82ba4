// SPDX-License-Identifier: MIT
#pragma once

#include "model/RowProofs.h"

#include <QString>

#include <map>
#include <memory>

/// Explains why rows are never announced. Asks the model which rows would be completed if their actions could
/// be delivered, which row decides about the keys of a row, and which rows would work without another one.
class NeverReasons
{
public:
    explicit NeverReasons(const model::KeyLists& lists) : m_lists(lists) {}

    /// A sentence or several about a row that is proved never to be announced.
    QString of(model::RowId row);
    /// Why a row of `list` that names `state` is not announced in it, although its keys complete it.
    static QString whyNotIn(const QString& state, model::List list);

private:
    bool isCompleted(model::RowId row);
    bool isCompletedWithout(int other, int combination);
    QString whyNotCompleted(model::RowId row) const;
    QString whyNotCompleted(int combination);
    QVector<int> suspects(int combination) const;

    const model::KeyLists m_lists;
    /// The same lists with a receiver and a state for all rows, and what is proved of them.
    std::unique_ptr<model::KeyModel> m_deliverable;
    std::unique_ptr<model::RowProofs> m_proofs;
    /// Likewise, for the combinations without one row.
    std::map<int, model::RowProofs> m_proofsWithout;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "model/RowProofs.h"

#include <QHash>
#include <QStringList>

#include <map>
#include <optional>

namespace checker {

/// Searches for the rows because of which others are never announced. Rows with the same cause share a proof.
class HidingRows
{
public:
    /// `proofs` are those of `lists` in `environment`. Both must outlive this object.
    HidingRows(const model::KeyLists& lists, const model::RowProofs& proofs,
               const model::Environment& environment)
        : m_lists(lists), m_proofs(proofs), m_environment(environment)
    {}

    /// The row that the daemon prefers to `id`, if `id` is announced when it is the only row. Nothing if it
    /// is not, or if too many proofs were needed for earlier rows.
    std::optional<model::RowId> hiding(model::RowId id);
    /// Whether `id` is announced, and all rows that are announced now still are, with `hiding` at the end of
    /// its list.
    bool isMovable(model::RowId hiding, model::RowId id);
    /// Whether a cause was not searched for.
    bool isExhausted() const { return m_isExhausted; }

private:
    /// What is proved about the lists with a row at the end.
    struct Move
    {
        model::RowProofs proofs;
        bool losesRows = false;
    };

    std::optional<model::RowId> preferredTo(model::RowId id) const;
    bool worksAlone(model::RowId id);
    Move moved(model::RowId hiding) const;

    const model::KeyLists& m_lists;
    const model::RowProofs& m_proofs;
    model::Environment m_environment;
    QHash<QStringList, bool> m_works;
    std::map<model::RowId, Move> m_moves;
    bool m_isExhausted = false;
};

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Finding.h"
#include "checker/JsonText.h"
#include "checker/ListSources.h"

#include <QVector>

#include <array>

namespace checker {

/// The places of the rows in their files.
class RowPlaces
{
public:
    explicit RowPlaces(const ListSources& sources);

    /// The object of a row that the loader returns.
    const JsonNode& row(model::RowId id) const;
    /// The value of a member; the whole row if it lacks the member.
    Place member(model::RowId id, const QString& name) const;
    /// The whole row.
    Place whole(model::RowId id) const { return {id.list, row(id).range, {}}; }
    /// All elements of a list, rows or not, in their order.
    const QVector<Range>& elements(model::List list) const { return m_elements[static_cast<size_t>(list)]; }
    /// The elements of a list that the loader skips.
    const QVector<Range>& skipped(model::List list) const { return m_skipped[static_cast<size_t>(list)]; }

private:
    void add(const SourceFile& file, model::List list);

    std::array<std::vector<JsonNode>, 3> m_rows;
    std::array<QVector<Range>, 3> m_elements;
    std::array<QVector<Range>, 3> m_skipped;
};

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"
#include "checker/MendProof.h"

#include <functional>

namespace checker {

/// Mends the findings of key lists that have one safe mend, in memory. After each change, the old and the new
/// lists are compared: a change that does more than its message says is not made.
class Mending
{
public:
    /// What finds the faults.
    using Check = std::function<CheckResult(const ListSources&)>;

    Mending(const ListSources& sources, const Check& check);

    /// The lists, mended.
    const ListSources& sources() const { return m_sources; }
    /// What `Check` finds in them.
    const CheckResult& result() const { return m_result; }
    /// The lists that have changed.
    QVector<model::List> changed() const;
    /// A line for each mend, and a line for what the rows do then.
    const QStringList& made() const { return m_made; }
    /// A line for each mend that does not keep its promise, or whose promise is not proved.
    const QStringList& refused() const { return m_refused; }

private:
    struct Unit;

    bool mendValues();
    bool mendRows();
    bool moveRow();
    Unit unitOfMove(const Finding& finding) const;
    bool mend(Unit unit);
    QString faultOf(const Unit& unit, const ListSources& mended, const model::KeyLists& lists);
    QString placeOf(const Finding& finding) const;
    void reportMade(const Unit& unit, const model::KeyLists& lists);
    void reportRefused(const Unit& unit, const QString& fault);
    bool checkAgain();

    Check m_check;
    ListSources m_original;
    ListSources m_sources;
    CheckResult m_result;
    QStringList m_made;
    QStringList m_refused;
    int m_comparisons = 0;
};

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/Mending.h"

#include "checker/Gesture.h"
#include "checker/OutputWords.h"
#include "checker/RowPlaces.h"
#include "checker/RowStates.h"
#include "checker/TextChecks.h"
#include "checker/WordChecks.h"

#include <algorithm>
#include <numeric>

namespace checker {

using model::KeyLists;
using model::List;
using model::RowId;
using Promise = Mend::Promise;

namespace {

/// Each pass mends what the one before has revealed: the state in a member that was misspelt, for example.
constexpr int maxPasses = 20;
/// Each takes up to seconds.
constexpr int maxComparisons = 200;

QVector<int> identity(int count)
{
    QVector<int> indices(count);
    std::iota(indices.begin(), indices.end(), 0);
    return indices;
}

void replace(ListSources& sources, List list, const QByteArray& text)
{
    SourceFile& file = sources.files[static_cast<size_t>(list)];
    file = SourceFile(file.name(), text);
}

/// What the mended row does.
QString effectOn(const KeyLists& lists, RowId id)
{
    const KeyEntry& row = lists.row(id);
    const QVector<model::State> states = MendProof::statesOf(lists, id);
    const QString name = QStringLiteral("row %1: ").arg(id.index + 1);
    const QString others = QStringLiteral("; all other rows do what they did");
    if (states.isEmpty()) {
        return name + QStringLiteral("no keys announce \"%1\" yet").arg(row.eAction()) + others;
    }
    return name +
           QStringLiteral("%1 now announces \"%2\" to %3 in %4")
               .arg(Gesture::toText(lists, id), row.eAction(), row.receiverService(),
                    RowStates::toText(states)) +
           others;
}

/// The actions of those rows that keys announce, in words.
QString workingOf(const KeyLists& lists, List list, const QSet<int>& rows)
{
    constexpr int maxNamed = 5;
    const QVector<int> working = MendProof::workingOf(lists, list);
    QStringList names;
    for (const int index : working) {
        if (rows.contains(index)) {
            names.append(QStringLiteral("\"%1\"").arg(lists.rows(list).at(index).eAction()));
        }
    }
    const QString verb = QLatin1String(names.size() == 1 ? " works" : " work");
    return (names.size() <= maxNamed ? OutputWords::enumeration(names)
                                     : QStringLiteral("%1 rows").arg(names.size())) +
           verb;
}

/// Whether the checks of single rows still find it.
bool isStillFound(const Finding& finding, const ListSources& sources, const KeyLists& lists)
{
    const RowPlaces places(sources);
    const List list = finding.place.list;
    const QVector<Finding> found = TextChecks::ofFile(sources, list) +
                                   TextChecks::ofRows(lists, places, list) +
                                   WordChecks::of(lists, places, list);
    return std::any_of(found.begin(), found.end(), [&finding](const Finding& other) {
        return other.id == finding.id && other.row == finding.row && other.message == finding.message;
    });
}

} // namespace

/// Changes of one list that are made together, or not at all.
struct Mending::Unit
{
    QVector<Finding> findings;
    QVector<TextEdit> edits;
    MendedRows rows;

    /// Leaves out a finding that would change the same text as another one.
    void add(const Finding& finding)
    {
        const auto overlaps = [&finding](const TextEdit& edit) {
            const auto& others = finding.mend->edits;
            return std::any_of(others.begin(), others.end(), [&edit](const TextEdit& other) {
                return other.range.begin < edit.range.end && edit.range.begin < other.range.end;
            });
        };
        if (std::none_of(edits.begin(), edits.end(), overlaps)) {
            findings.append(finding);
            edits += finding.mend->edits;
        }
    }
};

Mending::Mending(const ListSources& sources, const Check& check)
    : m_check(check), m_original(sources), m_sources(sources), m_result(check(sources))
{
    bool hasChanged = true;
    for (int pass = 0; hasChanged && pass < maxPasses; ++pass) {
        m_refused.clear();
        hasChanged = mendValues() || mendRows() || moveRow();
    }
}

QVector<List> Mending::changed() const
{
    QVector<List> lists;
    std::copy_if(m_sources.found.begin(), m_sources.found.end(), std::back_inserter(lists),
                 [this](List list) { return m_sources.file(list).text() != m_original.file(list).text(); });
    return lists;
}

/// Mends what the daemon reads in the same way, all at once.
bool Mending::mendValues()
{
    const int before = m_made.size();
    for (const List list : qAsConst(m_sources.found)) {
        Unit unit;
        unit.rows.list = list;
        unit.rows.origins = identity(m_sources.lists(false).rows(list).size());
        for (const Finding& finding : qAsConst(m_result.findings)) {
            if (finding.mend && finding.mend->promise == Promise::SameRows && finding.place.list == list) {
                unit.add(finding);
            }
        }
        mend(unit);
    }
    return m_made.size() > before && checkAgain();
}

/// Mends row by row, from the end of each file to its beginning, so that the places of the others stay right.
bool Mending::mendRows()
{
    const int before = m_made.size();
    QVector<Unit> units;
    for (const Finding& finding : qAsConst(m_result.findings)) {
        const bool isOfRow = finding.mend && finding.mend->promise == Promise::OneRow;
        const bool isOfList = finding.mend && finding.mend->promise == Promise::WholeList;
        if (isOfRow && !units.isEmpty() && units.last().findings.first().row == finding.row) {
            units.last().add(finding);
        } else if (isOfRow || isOfList) {
            units.append(Unit());
            units.last().rows.list = finding.place.list;
            units.last().add(finding);
        }
    }
    std::for_each(units.rbegin(), units.rend(), [this](Unit& unit) {
        const Finding& finding = unit.findings.first();
        const int count = finding.mend->promise == Promise::WholeList
                              ? 0
                              : m_sources.lists(false).rows(unit.rows.list).size();
        unit.rows.origins = identity(count);
        unit.rows.changing.insert(finding.row.index);
        mend(unit);
    });
    return m_made.size() > before && checkAgain();
}

/// Moves the first row that can be moved to the end of its list.
bool Mending::moveRow()
{
    QVector<RowId> tried;
    for (const Finding& finding : qAsConst(m_result.findings)) {
        if (!finding.mend || finding.mend->promise != Promise::Move || tried.contains(finding.mend->moved)) {
            continue;
        }
        tried.append(finding.mend->moved);
        if (mend(unitOfMove(finding))) {
            return checkAgain();
        }
    }
    return false;
}

Mending::Unit Mending::unitOfMove(const Finding& finding) const
{
    const RowId moved = finding.mend->moved;
    const RowPlaces places(m_sources);
    const QVector<Range>& elements = places.elements(moved.list);
    const auto element = std::find_if(elements.begin(), elements.end(), [&](Range range) {
        return range.begin == places.row(moved).range.begin;
    });
    Unit unit;
    unit.findings.append(finding);
    unit.edits = TextEdits::toEnd(m_sources.file(moved.list).text(), elements,
                                  static_cast<int>(element - elements.begin()));
    unit.rows.list = moved.list;
    unit.rows.origins = identity(m_sources.lists(false).rows(moved.list).size());
    unit.rows.origins.move(moved.index, unit.rows.origins.size() - 1);
    for (const Finding& other : qAsConst(m_result.findings)) {
        if (other.mend && other.mend->promise == Promise::Move && other.mend->moved == moved) {
            unit.rows.changing.insert(unit.rows.origins.indexOf(other.row.index));
        }
    }
    unit.rows.working = unit.rows.origins.indexOf(finding.row.index);
    return unit;
}

/// Whether the change was made.
bool Mending::mend(Unit unit)
{
    if (unit.edits.isEmpty()) {
        return false;
    }
    ListSources mended = m_sources;
    const List list = unit.rows.list;
    replace(mended, list, TextEdits::applied(m_sources.file(list).text(), unit.edits));
    const KeyLists lists = mended.lists(false);
    if (unit.findings.first().mend->promise == Promise::WholeList) {
        const int count = lists.rows(list).size();
        unit.rows.origins = QVector<int>(count, -1);
        const QVector<int> all = identity(count);
        unit.rows.changing = QSet<int>(all.begin(), all.end());
    }
    const QString fault = faultOf(unit, mended, lists);
    if (fault.isEmpty()) {
        reportMade(unit, lists);
        m_sources = mended;
    } else {
        reportRefused(unit, fault);
    }
    return fault.isEmpty();
}

/// Why the promise is not kept; empty if it is.
QString Mending::faultOf(const Unit& unit, const ListSources& mended, const KeyLists& lists)
{
    const Promise promise = unit.findings.first().mend->promise;
    if (promise != Promise::SameRows && ++m_comparisons > maxComparisons) {
        return QStringLiteral("too many changes for one run; run the command again");
    }
    const QString fault = MendProof::faultOf(m_sources.lists(false), lists, unit.rows);
    const auto remains = [&](const Finding& finding) { return isStillFound(finding, mended, lists); };
    const bool isMended =
        promise == Promise::Move || std::none_of(unit.findings.begin(), unit.findings.end(), remains);
    return !fault.isEmpty() || isMended ? fault : QStringLiteral("it would still be wrong");
}

/// "modifierKeyList.json:4:12": where the file changes first. A finding that offers a move shows the row to
/// move as its related place.
QString Mending::placeOf(const Finding& finding) const
{
    const bool isMove = finding.mend->promise == Promise::Move;
    const SourceFile& file = m_sources.file(finding.place.list);
    const Position position =
        file.position(isMove ? finding.related.first().range.begin : finding.mend->edits.first().range.begin);
    return QStringLiteral("%1:%2:%3")
        .arg(file.name(), QString::number(position.line), QString::number(position.column));
}

void Mending::reportMade(const Unit& unit, const KeyLists& lists)
{
    const Finding& first = unit.findings.first();
    for (const Finding& finding : unit.findings) {
        m_made.append(QStringLiteral("mended: %1: %2").arg(placeOf(finding), finding.mend->done));
    }
    switch (first.mend->promise) {
    case Promise::SameRows:
        m_made.append(QStringLiteral("    the daemon reads the same rows as before"));
        break;
    case Promise::OneRow:
        m_made.append(QStringLiteral("    ") + effectOn(lists, first.row));
        break;
    case Promise::WholeList:
        m_made.append(QStringLiteral("    the list has its rows now: %1").arg(unit.rows.origins.size()));
        break;
    case Promise::Move:
        m_made.append(QStringLiteral("    %1 now, and all rows that worked still do")
                          .arg(workingOf(lists, unit.rows.list, unit.rows.changing)));
        break;
    }
}

void Mending::reportRefused(const Unit& unit, const QString& fault)
{
    for (const Finding& finding : unit.findings) {
        m_refused.append(QStringLiteral("not mended: %1: %2. With all changes of this row, %3.")
                             .arg(placeOf(finding), finding.help, fault));
    }
}

bool Mending::checkAgain()
{
    m_result = m_check(m_sources);
    return true;
}

} // namespace checker

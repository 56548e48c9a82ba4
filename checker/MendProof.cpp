// SPDX-License-Identifier: MIT
#include "checker/MendProof.h"

#include "checker/OutputWords.h"
#include "checker/RunWords.h"
#include "checker/SearchWords.h"
#include "model/ListComparison.h"
#include "model/RowProofs.h"

#include <algorithm>

namespace checker {

using model::Difference;
using model::Environment;
using model::KeyLists;
using model::PlayedStep;
using model::RowId;
using model::RowProofs;
using model::RowVerdict;
using model::State;

namespace {

/// A person in front of one device, while the state stays as it is.
Environment person()
{
    Environment environment = Environment::person();
    environment.devices = 1;
    environment.panelKeysOnly = true;
    return environment;
}

bool areEqual(const KeyEntry& a, const KeyEntry& b)
{
    return a.keys() == b.keys() && a.eAction() == b.eAction() && a.timeout() == b.timeout() &&
           a.receiverService() == b.receiverService() && a.validOnState() == b.validOnState();
}

bool areEqual(const QList<KeyEntry>& a, const QList<KeyEntry>& b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const KeyEntry& one, const KeyEntry& other) { return areEqual(one, other); });
}

QVector<State> announcedStates(const RowProofs& proofs, RowId row)
{
    QVector<State> states;
    for (const State state : model::Alphabet::states()) {
        if (proofs.of(row, state).kind == RowVerdict::Kind::Announced) {
            states.append(state);
        }
    }
    return states;
}

QString nameOf(const KeyEntry& row, int index)
{
    return QStringLiteral("row %1, \"%2\",").arg(QString::number(index + 1), row.eAction());
}

/// Compares two lists.
class Comparison
{
public:
    Comparison(const KeyLists& oldLists, const KeyLists& newLists, const MendedRows& rows)
        : m_rows(rows), m_old(oldLists.only(rows.list)), m_new(newLists.only(rows.list))
    {}

    QString faultOfMembers() const;
    QString faultOfProofs() const;
    QString faultOfDifferences() const;

private:
    QString faultOfRow(const RowProofs& before, const RowProofs& after, int index) const;
    QVector<int> announced(const QVector<PlayedStep>& steps, const Difference& difference, bool isOld) const;

    const MendedRows& m_rows;
    KeyLists m_old;
    KeyLists m_new;
};

/// Rows that may not change must be as they were.
QString Comparison::faultOfMembers() const
{
    const QList<KeyEntry>& before = m_old.rows(m_rows.list);
    const QList<KeyEntry>& after = m_new.rows(m_rows.list);
    bool areKept = after.size() == m_rows.origins.size();
    for (int i = 0; areKept && i < after.size(); ++i) {
        const int origin = m_rows.origins.at(i);
        areKept = m_rows.changing.contains(i) ||
                  (origin >= 0 && origin < before.size() && areEqual(after.at(i), before.at(origin)));
    }
    return areKept ? QString() : QStringLiteral("the daemon would read other rows differently");
}

QString Comparison::faultOfProofs() const
{
    const RowProofs before(m_old, person(), searchLimits);
    const RowProofs after(m_new, person(), searchLimits);
    for (int i = 0; i < m_rows.origins.size(); ++i) {
        const QString fault = m_rows.changing.contains(i) ? QString() : faultOfRow(before, after, i);
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    const RowId working{m_rows.list, m_rows.working};
    const bool works = working.index < 0 || !announcedStates(after, working).isEmpty();
    return works ? QString() : QStringLiteral("it would still not work");
}

QString Comparison::faultOfRow(const RowProofs& before, const RowProofs& after, int index) const
{
    using Kind = RowVerdict::Kind;
    for (const State state : model::Alphabet::states()) {
        const Kind was = before.of({m_rows.list, m_rows.origins.at(index)}, state).kind;
        const Kind is = after.of({m_rows.list, index}, state).kind;
        if (was == Kind::NotProved || is == Kind::NotProved) {
            return QStringLiteral("it is not proved that the other rows would stay as they are");
        }
        if (was != is) {
            return nameOf(m_new.rows(m_rows.list).at(index), index) +
                   QStringLiteral(" would %1 be announced in %2")
                       .arg(QLatin1String(is == Kind::Announced ? "also" : "no longer"),
                            model::Alphabet::nameOf(state));
        }
    }
    return {};
}

/// The rows that are announced at the moment of the difference, by their indices in the old list, without
/// those that may do something else.
QVector<int> Comparison::announced(const QVector<PlayedStep>& steps, const Difference& difference,
                                   bool isOld) const
{
    QVector<int> rows;
    for (const PlayedStep& step : steps) {
        for (const model::Effect& effect : step.effects) {
            if (step.at != difference.end || effect.rule != model::Rule::Announces) {
                continue;
            }
            const int index = isOld ? m_rows.origins.indexOf(effect.row.index) : effect.row.index;
            if (!m_rows.changing.contains(index)) {
                rows.append(m_rows.origins.value(index, -1));
            }
        }
    }
    return rows;
}

/// Each difference must be the work of the rows that may do something else.
QString Comparison::faultOfDifferences() const
{
    const auto isAnnounced = [](const model::Output& output) {
        return output.kind == model::Output::Kind::Announce;
    };
    model::ListComparison comparison(m_old, m_new, isAnnounced);
    const QVector<Difference> differences = comparison.find(person(), searchLimits);
    for (const Difference& difference : differences) {
        if (announced(difference.oldSteps, difference, true) !=
            announced(difference.newSteps, difference, false)) {
            return QStringLiteral("in %1, %2 would announce something else")
                .arg(model::Alphabet::nameOf(difference.state),
                     RunWords::of(difference.oldSteps, difference.end));
        }
    }
    return comparison.proof().isComplete
               ? QString()
               : QStringLiteral("it is not proved that the other rows would stay as they are");
}

} // namespace

QString MendProof::faultOf(const KeyLists& oldLists, const KeyLists& newLists, const MendedRows& rows)
{
    for (const model::List list : model::allLists) {
        if (list != rows.list && !areEqual(oldLists.rows(list), newLists.rows(list))) {
            return QStringLiteral("the daemon would read other rows differently");
        }
    }
    const Comparison comparison(oldLists, newLists, rows);
    QString fault = comparison.faultOfMembers();
    const bool isWorthASearch = !rows.changing.isEmpty();
    fault = fault.isEmpty() && isWorthASearch ? comparison.faultOfProofs() : fault;
    return fault.isEmpty() && isWorthASearch ? comparison.faultOfDifferences() : fault;
}

QVector<State> MendProof::statesOf(const KeyLists& lists, RowId row)
{
    return announcedStates(RowProofs(lists.only(row.list), person(), searchLimits), row);
}

QVector<int> MendProof::workingOf(const KeyLists& lists, model::List list)
{
    const RowProofs proofs(lists.only(list), person(), searchLimits);
    QVector<int> rows;
    for (int i = 0; i < lists.rows(list).size(); ++i) {
        if (!announcedStates(proofs, {list, i}).isEmpty()) {
            rows.append(i);
        }
    }
    return rows;
}

} // namespace checker

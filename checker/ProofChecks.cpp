// SPDX-License-Identifier: MIT
#include "checker/ProofChecks.h"

#include "checker/Gesture.h"
#include "checker/HidingRows.h"
#include "keys/KeyListFile.h"
#include "model/KeyFacts.h"
#include "model/RowProofs.h"

#include <algorithm>

namespace checker {

using model::Environment;
using model::KeyLists;
using model::List;
using model::RowId;
using model::RowProofs;
using model::RowVerdict;
using model::State;

namespace {

/// A search of the largest lists that the daemon reads takes some seconds.
constexpr model::Limits limits{1'000'000, 50'000'000};
/// The search for the rows that hide a row takes some more proofs.
constexpr int maxExplained = 50;

Environment personOf(const CheckOptions& options)
{
    Environment environment;
    environment.kind = Environment::Kind::Person;
    environment.fingers = options.fingers;
    return environment;
}

QString namesOf(const QVector<State>& states)
{
    QStringList names;
    for (const State state : states) {
        names.append(model::Alphabet::nameOf(state));
    }
    return names.join(QStringLiteral(" and "));
}

/// The verdicts on one row, in its states.
struct RowVerdicts
{
    QVector<State> announced;
    /// No input announces the row.
    QVector<State> never;
    /// Other input announces the row, but not this person.
    QVector<State> notByPerson;
    QVector<State> notProved;
    /// Of the last state that is not announced.
    model::Proof proof;

    int count() const { return announced.size() + never.size() + notByPerson.size() + notProved.size(); }
};

RowVerdicts verdictsOn(const KeyLists& lists, const RowProofs& proofs, RowId id)
{
    RowVerdicts verdicts;
    QStringList names = lists.statesOf(id);
    names.removeDuplicates();
    for (const QString& name : qAsConst(names)) {
        const auto state = model::Alphabet::stateOf(name);
        if (!state) {
            continue;
        }
        const RowVerdict& verdict = proofs.of(id, *state);
        const bool isAbsolute = verdict.proof.environment.kind != Environment::Kind::Person;
        QVector<State>& states = verdict.kind == RowVerdict::Kind::Announced   ? verdicts.announced
                                 : verdict.kind == RowVerdict::Kind::NotProved ? verdicts.notProved
                                 : isAbsolute                                  ? verdicts.never
                                                                               : verdicts.notByPerson;
        states.append(*state);
        verdicts.proof = verdict.kind == RowVerdict::Kind::Announced ? verdicts.proof : verdict.proof;
    }
    return verdicts;
}

/// Why no keys announce a row of the list in `state`, apart from other rows.
QString reasonFor(List list, State state)
{
    if (state == model::KeyFacts::startup) {
        return QStringLiteral("keys are ignored in Startup");
    }
    if (list == List::Combinations && state != model::KeyFacts::idle) {
        return QStringLiteral("no combination can begin here: each key is announced at once and forgotten");
    }
    return {};
}

/// Finds what is wrong with one row.
class RowCheck
{
public:
    RowCheck(const KeyLists& lists, const RowPlaces& places, const RowProofs& proofs, const CheckOptions& options,
             CheckResult& result)
        : m_lists(lists), m_places(places), m_proofs(proofs), m_options(options), m_result(result)
    {}

    void check(RowId id);

private:
    void addNever(RowId id, const RowVerdicts& verdicts);
    void addInState(RowId id, const RowVerdicts& verdicts);
    Finding& add(RowId id, const char* name, Level level, const QString& message, const model::Proof& proof);
    QString action(RowId id) const { return m_lists.row(id).eAction(); }

    const KeyLists& m_lists;
    const RowPlaces& m_places;
    const RowProofs& m_proofs;
    const CheckOptions& m_options;
    CheckResult& m_result;
    int m_explained = 0;
};

void RowCheck::check(RowId id)
{
    const RowVerdicts verdicts = verdictsOn(m_lists, m_proofs, id);
    if (!verdicts.notProved.isEmpty()) {
        m_result.isProved = false;
        add(id, "not-proved", Level::Warning,
            QStringLiteral("not proved: the search for \"%1\" in %2 ended at its limit")
                .arg(action(id), namesOf(verdicts.notProved)),
            verdicts.proof);
    }
    if (!verdicts.never.isEmpty() && verdicts.never.size() == verdicts.count()) {
        addNever(id, verdicts);
    } else if (!verdicts.never.isEmpty()) {
        addInState(id, verdicts);
    }
    if (!verdicts.notByPerson.isEmpty()) {
        add(id, "two-hands", Level::Warning,
            QStringLiteral("\"%1\" cannot be reached with %2 in %3")
                .arg(action(id),
                     m_options.fingers == 1 ? QStringLiteral("one finger")
                                            : QStringLiteral("%1 fingers").arg(m_options.fingers),
                     namesOf(verdicts.notByPerson)),
            verdicts.proof);
    }
}

Finding& RowCheck::add(RowId id, const char* name, Level level, const QString& message, const model::Proof& proof)
{
    Finding finding;
    finding.id = QString::fromLatin1(name);
    finding.level = level;
    finding.message = message;
    finding.row = id;
    finding.place = m_places.member(id, KeyListFields::keys);
    finding.proof = ProofNote{{}, proof};
    m_result.findings.append(finding);
    return m_result.findings.last();
}

void RowCheck::addNever(RowId id, const RowVerdicts& verdicts)
{
    const Environment person = personOf(m_options);
    const QVector<RowId> hiding =
        ++m_explained > maxExplained ? QVector<RowId>() : HidingRows::of(m_lists, id, person, limits);
    const QString message = QStringLiteral("no keys announce \"%1\"").arg(action(id));
    if (hiding.isEmpty()) {
        Finding& finding = add(id, "never", Level::Error, message, verdicts.proof);
        finding.place.remark = reasonFor(id.list, verdicts.never.first());
        if (m_explained > maxExplained) {
            finding.help = QStringLiteral("mend the other rows first: the cause was searched for only %1 rows")
                               .arg(maxExplained);
        }
        return;
    }
    Finding& finding = add(id, "hidden", Level::Error, message, verdicts.proof);
    for (const RowId row : hiding) {
        finding.related.append(m_places.member(row, KeyListFields::keys));
        finding.related.last().remark = QStringLiteral("row %1 hides row %2").arg(row.index + 1).arg(id.index + 1);
    }
    if (hiding.size() == 1 && HidingRows::isMovable(m_lists, hiding.first(), id, m_proofs, person, limits)) {
        finding.help =
            QStringLiteral("move row %1 to the end of the list: then row %2 works, and all that work now still do")
                .arg(hiding.first().index + 1)
                .arg(id.index + 1);
    }
}

void RowCheck::addInState(RowId id, const RowVerdicts& verdicts)
{
    Finding& finding = add(id, "never-in-state", Level::Warning,
                           QStringLiteral("no keys announce \"%1\" in %2").arg(action(id), namesOf(verdicts.never)),
                           verdicts.proof);
    finding.place = m_places.member(id, KeyListFields::validOnState);
    finding.place.remark = reasonFor(id.list, verdicts.never.first());
}

void checkPace(const KeyLists& lists, const RowPlaces& places, const QVector<RowId>& ids, const RowProofs& proofs,
               const CheckOptions& options, CheckResult& result)
{
    Environment slow = personOf(options);
    slow.time = Environment::Time::Digital;
    slow.pace = options.pace;
    const RowProofs slowProofs(lists, slow, limits);
    for (const RowId id : ids) {
        const QVector<State> before = verdictsOn(lists, proofs, id).announced;
        const RowVerdicts after = verdictsOn(lists, slowProofs, id);
        if (!after.notProved.isEmpty()) {
            result.isProved = false;
        }
        if (!before.isEmpty() && after.announced.isEmpty() && after.notProved.isEmpty()) {
            Finding finding;
            finding.id = QStringLiteral("pace");
            finding.message = QStringLiteral("\"%1\" cannot be reached with %2 ms between two movements")
                                  .arg(lists.row(id).eAction())
                                  .arg(options.pace.count());
            finding.row = id;
            finding.place = places.member(id, KeyListFields::keys);
            finding.proof = ProofNote{{}, after.proof};
            result.findings.append(finding);
        }
    }
    for (const model::Proof& proof : slowProofs.searches()) {
        result.situations += proof.situations;
        result.steps += proof.steps;
    }
}

} // namespace

void ProofChecks::run(const KeyLists& lists, const RowPlaces& places, const QVector<RowId>& ids,
                      const CheckOptions& options, CheckResult& result)
{
    const RowProofs proofs(lists, personOf(options), limits);
    RowCheck rowCheck(lists, places, proofs, options, result);
    for (const RowId id : ids) {
        rowCheck.check(id);
    }
    for (const model::Proof& proof : proofs.searches()) {
        result.situations += proof.situations;
        result.steps += proof.steps;
    }
    if (options.pace > std::chrono::milliseconds::zero()) {
        checkPace(lists, places, ids, proofs, options, result);
    }
}

} // namespace checker

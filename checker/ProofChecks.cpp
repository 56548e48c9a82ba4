// SPDX-License-Identifier: MIT
#include "checker/ProofChecks.h"

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

/// A person in front of the device, while the state stays as it is.
Environment personOf(int fingers)
{
    Environment environment;
    environment.kind = Environment::Kind::Person;
    environment.fingers = fingers;
    environment.stateChanges = false;
    return environment;
}

/// Keys in any order, and changes of the state between them.
Environment anyInput()
{
    return {};
}

QString namesOf(const QVector<State>& states)
{
    QStringList names;
    for (const State state : states) {
        names.append(model::Alphabet::nameOf(state));
    }
    return names.join(QStringLiteral(" and "));
}

/// The searches for all rows.
struct Proofs
{
    Proofs(const KeyLists& lists, int fingers)
        : person(lists, personOf(fingers), limits)
        , pair(lists, personOf(qMax(fingers, 2)), limits)
        , any(lists, anyInput(), limits)
    {}

    RowProofs person;
    /// No gesture takes more than two fingers.
    RowProofs pair;
    RowProofs any;
};

/// The states of one row, by what is proved.
struct RowVerdicts
{
    QVector<State> announced;
    /// No input announces the row.
    QVector<State> never;
    /// Only if the state changes between the keys.
    QVector<State> changing;
    /// Only with more fingers.
    QVector<State> notByPerson;
    QVector<State> notProved;
    /// Of the last state that is not announced.
    model::Proof proof;

    int count() const
    {
        return announced.size() + never.size() + changing.size() + notByPerson.size() + notProved.size();
    }
};

void judge(const Proofs& proofs, RowId id, State state, RowVerdicts& verdicts)
{
    using Kind = RowVerdict::Kind;
    const RowVerdict& person = proofs.person.of(id, state);
    const RowVerdict& pair = proofs.pair.of(id, state);
    const RowVerdict& any = proofs.any.of(id, state);
    if (person.kind == Kind::Announced) {
        verdicts.announced.append(state);
    } else if (person.kind == Kind::NotProved) {
        verdicts.notProved.append(state);
        verdicts.proof = person.proof;
    } else if (pair.kind == Kind::Announced) {
        verdicts.notByPerson.append(state);
        verdicts.proof = person.proof;
    } else if (any.kind == Kind::Never) {
        verdicts.never.append(state);
        verdicts.proof = any.proof;
    } else if (any.kind == Kind::Announced) {
        verdicts.changing.append(state);
        verdicts.proof = pair.proof;
    } else {
        verdicts.notProved.append(state);
        verdicts.proof = any.proof;
    }
}

RowVerdicts verdictsOn(const KeyLists& lists, const Proofs& proofs, RowId id)
{
    RowVerdicts verdicts;
    QStringList names = lists.statesOf(id);
    names.removeDuplicates();
    for (const QString& name : qAsConst(names)) {
        if (const auto state = model::Alphabet::stateOf(name)) {
            judge(proofs, id, *state, verdicts);
        }
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
    RowCheck(const KeyLists& lists, const RowPlaces& places, const Proofs& proofs, const CheckOptions& options,
             CheckResult& result)
        : m_lists(lists), m_places(places), m_proofs(proofs), m_options(options), m_result(result)
    {}

    void check(RowId id);

private:
    void addNever(RowId id, const RowVerdicts& verdicts);
    void addInState(RowId id, const RowVerdicts& verdicts);
    void addChanging(RowId id, const RowVerdicts& verdicts);
    Finding& add(RowId id, const char* name, Level level, const QString& message, const model::Proof& proof);
    QString action(RowId id) const { return m_lists.row(id).eAction(); }

    const KeyLists& m_lists;
    const RowPlaces& m_places;
    const Proofs& m_proofs;
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
    if (!verdicts.changing.isEmpty()) {
        addChanging(id, verdicts);
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
    const Environment person = personOf(qMax(m_options.fingers, 2));
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
    if (hiding.size() == 1 && HidingRows::isMovable(m_lists, hiding.first(), id, m_proofs.pair, person, limits)) {
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

/// A row that works only while the state changes is of no use: an error unless it works in another state.
void RowCheck::addChanging(RowId id, const RowVerdicts& verdicts)
{
    const Level level = verdicts.announced.isEmpty() ? Level::Error : Level::Warning;
    Finding& finding =
        add(id, "state-change", level,
            QStringLiteral("no keys announce \"%1\" in %2 unless the state changes between them")
                .arg(action(id), namesOf(verdicts.changing)),
            verdicts.proof);
    finding.place = m_places.member(id, KeyListFields::validOnState);
    finding.place.remark = reasonFor(id.list, verdicts.changing.first());
}

void addExtent(const RowProofs& proofs, CheckResult& result)
{
    for (const model::Proof& proof : proofs.searches()) {
        result.situations += proof.situations;
        result.steps += proof.steps;
    }
}

void checkPace(const KeyLists& lists, const RowPlaces& places, const QVector<RowId>& ids, const RowProofs& proofs,
               const CheckOptions& options, CheckResult& result)
{
    Environment slow = personOf(options.fingers);
    slow.time = Environment::Time::Digital;
    slow.pace = options.pace;
    const RowProofs slowProofs(lists, slow, limits);
    for (const RowId id : ids) {
        const auto statesWith = [&](const RowProofs& searched, RowVerdict::Kind kind) {
            const auto& states = model::Alphabet::states();
            return std::count_if(states.begin(), states.end(),
                                 [&](State state) { return searched.of(id, state).kind == kind; });
        };
        const bool mayWork = statesWith(slowProofs, RowVerdict::Kind::Announced) > 0;
        const bool isUnknown = statesWith(slowProofs, RowVerdict::Kind::NotProved) > 0;
        if (isUnknown && !mayWork) {
            result.isProved = false;
        } else if (!mayWork && statesWith(proofs, RowVerdict::Kind::Announced) > 0) {
            Finding finding;
            finding.id = QStringLiteral("pace");
            finding.message = QStringLiteral("\"%1\" cannot be reached with %2 ms between two movements")
                                  .arg(lists.row(id).eAction())
                                  .arg(options.pace.count());
            finding.row = id;
            finding.place = places.member(id, KeyListFields::keys);
            finding.proof = ProofNote{{}, slowProofs.of(id, State::Undefined).proof};
            result.findings.append(finding);
        }
    }
    addExtent(slowProofs, result);
}

} // namespace

void ProofChecks::run(const KeyLists& lists, const RowPlaces& places, const QVector<RowId>& ids,
                      const CheckOptions& options, CheckResult& result)
{
    const Proofs proofs(lists, options.fingers);
    RowCheck rowCheck(lists, places, proofs, options, result);
    for (const RowId id : ids) {
        rowCheck.check(id);
    }
    for (const RowProofs* searched : {&proofs.person, &proofs.pair, &proofs.any}) {
        addExtent(*searched, result);
    }
    if (options.pace > std::chrono::milliseconds::zero()) {
        checkPace(lists, places, ids, proofs.person, options, result);
    }
}

} // namespace checker

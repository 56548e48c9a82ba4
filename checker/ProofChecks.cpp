// SPDX-License-Identifier: MIT
#include "checker/ProofChecks.h"

#include "checker/HidingRows.h"
#include "checker/RowStates.h"
#include "keys/KeyListFile.h"
#include "model/KeyFacts.h"
#include "model/RowProofs.h"

#include <QHash>
#include <QMap>

#include <algorithm>
#include <optional>

namespace checker {

using model::Environment;
using model::KeyLists;
using model::List;
using model::RowId;
using model::RowProofs;
using model::RowVerdict;
using model::State;

namespace {

Environment personOf(int fingers)
{
    Environment environment = Environment::person();
    environment.fingers = fingers;
    return environment;
}

/// Keys in any order, changes of the state between them, and the keyboard test.
Environment anyInput()
{
    return {};
}

/// The searches for all rows.
struct Proofs
{
    Proofs(const KeyLists& lists, int fingers, const model::Limits& limits)
        : person(lists, personOf(fingers), limits), any(lists, anyInput(), limits)
    {
        if (fingers < maxNeeded) {
            more.emplace(lists, personOf(maxNeeded), limits);
        }
    }

    /// A person with as many fingers as any gesture needs.
    const RowProofs& skilled() const { return more ? *more : person; }

    /// No gesture needs more fingers.
    static constexpr int maxNeeded = 2;
    RowProofs person;
    std::optional<RowProofs> more;
    RowProofs any;
};

/// States for which the same is proved.
struct ProvedStates
{
    QVector<State> states;
    /// Of the last of them.
    model::Proof proof;

    void add(State state, const RowVerdict& verdict)
    {
        states.append(state);
        proof = verdict.proof;
    }
    bool isEmpty() const { return states.isEmpty(); }
};

/// The states of one row, by what is proved.
struct RowVerdicts
{
    ProvedStates announced;
    /// No input announces the row.
    ProvedStates never;
    /// Only if the state changes between the keys, or in the keyboard test.
    ProvedStates changing;
    /// Only with more fingers.
    ProvedStates notByPerson;
    ProvedStates notProved;
};

void judge(const Proofs& proofs, RowId id, State state, RowVerdicts& verdicts)
{
    using Kind = RowVerdict::Kind;
    const RowVerdict& person = proofs.person.of(id, state);
    const RowVerdict& skilled = proofs.skilled().of(id, state);
    const RowVerdict& any = proofs.any.of(id, state);
    if (person.kind == Kind::Announced) {
        verdicts.announced.add(state, person);
    } else if (any.kind == Kind::Never) {
        verdicts.never.add(state, any);
    } else if (person.kind == Kind::NotProved) {
        verdicts.notProved.add(state, person);
    } else if (skilled.kind != Kind::Announced &&
               (skilled.kind == Kind::NotProved || any.kind == Kind::NotProved)) {
        verdicts.notProved.add(state, skilled.kind == Kind::NotProved ? skilled : any);
    } else if (skilled.kind == Kind::Announced ||
               skilled.proof.environment.kind == Environment::Kind::Person) {
        verdicts.notByPerson.add(state, person); // more fingers or other input in the same state announce it
    } else {
        verdicts.changing.add(state, skilled);
    }
}

RowVerdicts verdictsOn(const KeyLists& lists, const Proofs& proofs, RowId id)
{
    RowVerdicts verdicts;
    const QVector<State> states = RowStates::of(lists, id);
    for (const State state : states) {
        judge(proofs, id, state, verdicts);
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

/// For each action, the states in which it is announced, with the first row that announces it there.
QHash<QString, QMap<State, RowId>> announcingRows(const KeyLists& lists, const RowProofs& proofs)
{
    QHash<QString, QMap<State, RowId>> rows;
    const QVector<RowId> ids = lists.ids();
    for (const RowId id : ids) {
        for (const State state : model::Alphabet::states()) {
            if (proofs.of(id, state).kind == RowVerdict::Kind::Announced) {
                QMap<State, RowId>& ofAction = rows[lists.row(id).eAction()];
                ofAction.insert(state, ofAction.value(state, id));
            }
        }
    }
    return rows;
}

/// How both of two long presses with the same key can work.
QString helpForLongPresses(const KeyLists& lists, RowId hiding, RowId id)
{
    const KeyEntry& counting = lists.row(hiding);
    const KeyEntry& hidden = lists.row(id);
    if (counting.eAction() != hidden.eAction() || counting.receiverService() != hidden.receiverService()) {
        return QStringLiteral("of several long presses with a key, only the last one counts: choose another "
                              "key for one of them");
    }
    const QVector<State> states = RowStates::of(lists, hiding);
    const QVector<State> hiddenStates = RowStates::of(lists, id);
    const bool isNeeded = std::any_of(hiddenStates.begin(), hiddenStates.end(),
                                      [&](State state) { return !states.contains(state); });
    return (isNeeded
                ? QStringLiteral("join the states of both in row %1 with a vertical bar, and delete row %2")
                : QStringLiteral("delete row %2: row %1 announces the same action"))
        .arg(hiding.index + 1)
        .arg(id.index + 1);
}

/// How both of two rows can work if their order does not matter.
QString helpAgainst(const KeyLists& lists, RowId hiding, RowId id)
{
    switch (id.list) {
    case List::LongPresses:
        return helpForLongPresses(lists, hiding, id);
    case List::Combinations:
        break;
    case List::Shortcuts:
        return QStringLiteral(
            "of several shortcuts with the same keys, only the first one counts, in its one "
            "state: choose other keys for one of them");
    }
    return {};
}

/// Finds what is wrong with one row.
class RowCheck
{
public:
    RowCheck(const KeyLists& lists, const RowPlaces& places, const Proofs& proofs,
             const CheckOptions& options, CheckResult& result)
        : m_lists(lists)
        , m_places(places)
        , m_proofs(proofs)
        , m_options(options)
        , m_result(result)
        , m_hidingRows(lists, proofs.skilled(), personOf(qMax(options.fingers, Proofs::maxNeeded)))
        , m_announcing(announcingRows(lists, proofs.skilled()))
    {}

    void check(RowId id);

private:
    void addNever(RowId id, const ProvedStates& never);
    void addInState(RowId id, const ProvedStates& never);
    void addChanging(RowId id, const ProvedStates& changing, Level level);
    Finding& add(RowId id, const char* name, Level level, const QString& message, const model::Proof& proof);
    QString action(RowId id) const { return m_lists.row(id).eAction(); }
    QString neverAnnounced(RowId id) const;
    QString notAnnouncedIn(RowId id, const QVector<State>& states) const;

    const KeyLists& m_lists;
    const RowPlaces& m_places;
    const Proofs& m_proofs;
    const CheckOptions& m_options;
    CheckResult& m_result;
    HidingRows m_hidingRows;
    QHash<QString, QMap<State, RowId>> m_announcing;
};

void RowCheck::check(RowId id)
{
    const RowVerdicts verdicts = verdictsOn(m_lists, m_proofs, id);
    if (!verdicts.notProved.isEmpty()) {
        m_result.isProved = false;
        add(id, "not-proved", Level::Warning,
            QStringLiteral("not proved: the search for \"%1\" in %2 ended at its limit")
                .arg(action(id), RowStates::toText(verdicts.notProved.states)),
            verdicts.notProved.proof);
    }
    if (!verdicts.never.isEmpty() && verdicts.never.states.size() == RowStates::of(m_lists, id).size()) {
        addNever(id, verdicts.never);
    } else if (!verdicts.never.isEmpty()) {
        addInState(id, verdicts.never);
    }
    if (!verdicts.changing.isEmpty()) {
        addChanging(id, verdicts.changing, verdicts.announced.isEmpty() ? Level::Error : Level::Warning);
    }
    if (!verdicts.notByPerson.isEmpty()) {
        add(id, "two-hands", Level::Warning,
            QStringLiteral("\"%1\" of row %2 cannot be reached with %3 in %4")
                .arg(action(id), QString::number(id.index + 1),
                     m_options.fingers == 1 ? QStringLiteral("one finger")
                                            : QStringLiteral("%1 fingers").arg(m_options.fingers),
                     RowStates::toText(verdicts.notByPerson.states)),
            verdicts.notByPerson.proof);
    }
}

Finding& RowCheck::add(RowId id, const char* name, Level level, const QString& message,
                       const model::Proof& proof)
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

void RowCheck::addNever(RowId id, const ProvedStates& never)
{
    const QString message = neverAnnounced(id);
    const auto hiding = m_hidingRows.hiding(id);
    if (!hiding) {
        Finding& finding = add(id, "never", Level::Error, message, never.proof);
        finding.place.remark = reasonFor(id.list, never.states.first());
        if (m_hidingRows.isExhausted()) {
            finding.help =
                QStringLiteral("mend the other rows first: the search for causes has ended at its limit");
        }
        return;
    }
    Finding& finding = add(id, "hidden", Level::Error, message, never.proof);
    finding.related.append(m_places.member(*hiding, KeyListFields::keys));
    finding.related.last().remark =
        QStringLiteral("row %1 hides row %2").arg(hiding->index + 1).arg(id.index + 1);
    if (m_hidingRows.isMovable(*hiding, id)) {
        finding.help =
            QStringLiteral(
                "move row %1 to the end of the list: then row %2 works, and all that work now still do")
                .arg(hiding->index + 1)
                .arg(id.index + 1);
        finding.mend = Mend{Mend::Promise::Move,
                            {},
                            *hiding,
                            QStringLiteral("row %1 is now the last one").arg(hiding->index + 1)};
    } else {
        finding.help = helpAgainst(m_lists, *hiding, id);
    }
}

/// Another row may have the same action, for example for another state.
QString RowCheck::neverAnnounced(RowId id) const
{
    const QMap<State, RowId> others = m_announcing.value(action(id));
    if (others.isEmpty()) {
        return QStringLiteral("no keys announce \"%1\"").arg(action(id));
    }
    const RowId other = others.first();
    const QString file =
        other.list == id.list ? QString() : QStringLiteral(" of ") + KeyLists::fileOf(other.list);
    return QStringLiteral("row %1 never announces \"%2\"; row %3%4 does in %5")
        .arg(QString::number(id.index + 1), action(id), QString::number(other.index + 1), file,
             RowStates::toText(others.keys(other).toVector()));
}

QString RowCheck::notAnnouncedIn(RowId id, const QVector<State>& states) const
{
    const QMap<State, RowId> others = m_announcing.value(action(id));
    const bool isElsewhere =
        std::any_of(states.begin(), states.end(), [&](State state) { return others.contains(state); });
    const QString subject = isElsewhere ? QStringLiteral("row %1 does not announce").arg(id.index + 1)
                                        : QStringLiteral("no keys announce");
    return QStringLiteral("%1 \"%2\" in %3").arg(subject, action(id), RowStates::toText(states));
}

void RowCheck::addInState(RowId id, const ProvedStates& never)
{
    Finding& finding =
        add(id, "never-in-state", Level::Warning, notAnnouncedIn(id, never.states), never.proof);
    finding.place = m_places.member(id, KeyListFields::validOnState);
    finding.place.remark = reasonFor(id.list, never.states.first());
}

/// A row that works only while the state changes is of no use: an error unless it works in another state.
void RowCheck::addChanging(RowId id, const ProvedStates& changing, Level level)
{
    Finding& finding =
        add(id, "state-change", level,
            notAnnouncedIn(id, changing.states) +
                QStringLiteral(" unless the state changes between the keys or the keyboard test runs"),
            changing.proof);
    finding.place = m_places.member(id, KeyListFields::validOnState);
    finding.place.remark = reasonFor(id.list, changing.states.first());
}

void addExtent(const RowProofs& proofs, CheckResult& result)
{
    for (const model::Proof& proof : proofs.searches()) {
        result.situations += proof.situations;
        result.steps += proof.steps;
    }
}

/// The first state in which the row has a verdict of this kind.
std::optional<State> stateWith(const RowProofs& proofs, RowId id, RowVerdict::Kind kind)
{
    for (const State state : model::Alphabet::states()) {
        if (proofs.of(id, state).kind == kind) {
            return state;
        }
    }
    return std::nullopt;
}

void checkPace(const KeyLists& lists, const RowPlaces& places, const QVector<RowId>& ids,
               const RowProofs& proofs, const CheckOptions& options, CheckResult& result)
{
    Environment slow = personOf(options.fingers);
    slow.time = Environment::Time::Digital;
    slow.pace = options.pace;
    const RowProofs slowProofs(lists, slow, options.limits);
    for (const RowId id : ids) {
        const auto worksIn = stateWith(proofs, id, RowVerdict::Kind::Announced);
        if (!worksIn || stateWith(slowProofs, id, RowVerdict::Kind::Announced)) {
            continue;
        }
        if (stateWith(slowProofs, id, RowVerdict::Kind::NotProved)) {
            result.isProved = false;
            continue;
        }
        Finding finding;
        finding.id = QStringLiteral("pace");
        finding.message =
            QStringLiteral("\"%1\" of row %2 cannot be reached with %3 ms between two movements")
                .arg(lists.row(id).eAction(), QString::number(id.index + 1),
                     QString::number(options.pace.count()));
        finding.row = id;
        finding.place = places.member(id, KeyListFields::keys);
        finding.proof = ProofNote{{}, slowProofs.of(id, *worksIn).proof};
        result.findings.append(finding);
    }
    addExtent(slowProofs, result);
}

} // namespace

void ProofChecks::run(const KeyLists& lists, const RowPlaces& places, const QVector<RowId>& ids,
                      const CheckOptions& options, CheckResult& result)
{
    const Proofs proofs(lists, options.fingers, options.limits);
    RowCheck rowCheck(lists, places, proofs, options, result);
    for (const RowId id : ids) {
        rowCheck.check(id);
    }
    addExtent(proofs.person, result);
    addExtent(proofs.any, result);
    if (proofs.more) {
        addExtent(*proofs.more, result);
    }
    if (options.pace > std::chrono::milliseconds::zero()) {
        checkPace(lists, places, ids, proofs.person, options, result);
    }
}

} // namespace checker

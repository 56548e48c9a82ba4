// SPDX-License-Identifier: MIT
#include "model/RowProofs.h"

#include "model/Witness.h"

#include <QtAlgorithms>

#include <algorithm>

namespace model {

namespace {

/// A search with clocks after one without looks only for a run, which is short; without a run it proves
/// nothing.
constexpr Limits limitsForRuns{50'000, 2'000'000};

constexpr quint8 bit(State state)
{
    return static_cast<quint8>(1U << static_cast<unsigned>(state));
}

} // namespace

/// Searches for the rows of one list in several environments. A pair of a row and a state that the row names
/// is open until it is found.
class RowProofs::Search
{
public:
    Search(const KeyModel& all, List list, const Limits& limits, QVector<ByState>& verdicts);

    /// Searches for runs that announce open pairs. Only if `confirms`, replays them and gives verdicts.
    void look(const Environment& environment, bool confirms);
    /// Gives a verdict on the open pairs: `Never` if the last search was complete and `excludes` is true.
    void close(bool excludes);
    /// Opens the pairs whose runs were not confirmed.
    void reopenUnconfirmed();
    /// Lowers the limits of further searches.
    void limitTo(const Limits& limits);
    bool isDone() const { return m_openCount == 0; }
    /// The last search.
    const Proof& proof() const { return m_proof; }

private:
    void open(const QVector<quint8>& states);
    void find(const Explorer& explorer, const Explorer::Transition& transition, bool confirms);

    const KeyModel& m_all;
    KeyModel m_model;
    Limits m_limits;
    QVector<ByState>& m_verdicts;
    QVector<quint8> m_open; // states, by rows
    int m_openCount = 0;
    QVector<quint8> m_found;
    QVector<quint8> m_unconfirmed;
    Proof m_proof;
    Environment m_environment;
};

RowProofs::Search::Search(const KeyModel& all, List list, const Limits& limits, QVector<ByState>& verdicts)
    : m_all(all)
    , m_model(all.lists().only(list), KeyModel::Scope::RowsOfOneList)
    , m_limits(limits)
    , m_verdicts(verdicts)
{
    QVector<quint8> named(verdicts.size(), 0);
    for (int row = 0; row < named.size(); ++row) {
        for (const State state : Alphabet::states()) {
            const bool isNamed = m_model.rows().delivery({list, row}).named[static_cast<size_t>(state)] > 0;
            named[row] = static_cast<quint8>(named.at(row) | (isNamed ? bit(state) : 0));
        }
    }
    open(named);
}

void RowProofs::Search::open(const QVector<quint8>& states)
{
    m_open = states;
    m_openCount = 0;
    for (const quint8 rowStates : states) {
        m_openCount += static_cast<int>(qPopulationCount(rowStates));
    }
    m_unconfirmed = QVector<quint8>(states.size(), 0);
}

void RowProofs::Search::look(const Environment& environment, bool confirms)
{
    m_environment = environment;
    m_found.fill(0, m_open.size());
    Explorer explorer(m_model, environment, m_limits);
    m_proof = explorer.explore([&](const Explorer::Transition& transition) {
        find(explorer, transition, confirms);
        return isDone() ? Explorer::Next::Stop : Explorer::Next::Continue;
    });
    for (int row = 0; row < m_found.size(); ++row) {
        for (const State state : Alphabet::states()) {
            if (m_found.at(row) & bit(state)) {
                m_verdicts[row][static_cast<size_t>(state)].proof = m_proof;
            }
        }
    }
}

void RowProofs::Search::find(const Explorer& explorer, const Explorer::Transition& transition, bool confirms)
{
    // Rows that one step announces share its run, which is played once: thousands of rows may be alike.
    Run run;
    QVector<RowId> announced;
    for (const Effect& effect : transition.effects) {
        const quint8 state = bit(transition.after.situation.state);
        const bool isNew = effect.rule == Rule::Announces && (m_open.at(effect.row.index) & state);
        if (!isNew) {
            continue;
        }
        const int row = effect.row.index;
        if (confirms && run.inputs.isEmpty()) {
            run = explorer.pathThrough(transition);
            announced = Witness::announcedAtEnd(Witness::play(m_all, m_environment, run));
        }
        m_open[row] = static_cast<quint8>(m_open.at(row) & ~state);
        --m_openCount;
        if (std::binary_search(announced.begin(), announced.end(), effect.row)) {
            m_found[row] = static_cast<quint8>(m_found.at(row) | state);
            m_verdicts[row][static_cast<size_t>(transition.after.situation.state)] = {
                RowVerdict::Kind::Announced, m_proof, run};
        } else {
            m_unconfirmed[row] = static_cast<quint8>(m_unconfirmed.at(row) | state);
        }
    }
}

void RowProofs::Search::close(bool excludes)
{
    const auto kind = excludes && m_proof.isComplete ? RowVerdict::Kind::Never : RowVerdict::Kind::NotProved;
    for (int row = 0; row < m_open.size(); ++row) {
        for (const State state : Alphabet::states()) {
            if (m_open.at(row) & bit(state)) {
                m_verdicts[row][static_cast<size_t>(state)] = {kind, m_proof, {}};
            }
        }
    }
}

void RowProofs::Search::reopenUnconfirmed()
{
    open(QVector<quint8>(m_unconfirmed));
}

void RowProofs::Search::limitTo(const Limits& limits)
{
    m_limits = {qMin(m_limits.situations, limits.situations), qMin(m_limits.steps, limits.steps)};
}

RowProofs::RowProofs(const KeyLists& lists, const Environment& environment, const Limits& limits)
    : m_model(lists), m_environment(environment), m_limits(limits)
{
    ByState notNamed;
    notNamed.fill({RowVerdict::Kind::Never, {anyInput(), 0, 0, true}, {}});
    for (const List list : allLists) {
        m_verdicts[static_cast<size_t>(list)].fill(notNamed, lists.rows(list).size());
        prove(list);
    }
}

const RowVerdict& RowProofs::of(RowId row, State state) const
{
    return m_verdicts[static_cast<size_t>(row.list)].at(row.index)[static_cast<size_t>(state)];
}

bool RowProofs::isNever(RowId row) const
{
    const auto& states = Alphabet::states();
    return std::all_of(states.begin(), states.end(),
                       [&](State state) { return of(row, state).kind == RowVerdict::Kind::Never; });
}

void RowProofs::prove(List list)
{
    Search search(m_model, list, m_limits, m_verdicts[static_cast<size_t>(list)]);
    const bool isPerson = m_environment.kind == Environment::Kind::Person;
    if (isPerson) {
        look(anyInput(), false, search);
        search.close(true);
        search.reopenUnconfirmed();
    }
    lookThrough(m_environment, search);
    search.close(true);
    // If no times fit the run that was found without clocks, a search with clocks may find another.
    search.reopenUnconfirmed();
    if (isPerson && m_environment.time == Environment::Time::Untimed) {
        Environment digital = m_environment;
        digital.time = Environment::Time::Digital;
        search.limitTo(limitsForRuns);
        lookThrough(digital, search);
    }
    search.close(false);
}

void RowProofs::look(const Environment& environment, bool confirms, Search& search)
{
    if (!search.isDone()) {
        search.look(environment, confirms);
        m_searches.append(search.proof());
    }
}

void RowProofs::lookThrough(const Environment& environment, Search& search)
{
    for (const Environment& part : environment.growth()) {
        look(part, true, search);
    }
}

Environment RowProofs::anyInput() const
{
    Environment environment = m_environment;
    environment.kind = Environment::Kind::AnyInput;
    environment.time = Environment::Time::Untimed;
    environment.pace = {};
    return environment;
}

} // namespace model

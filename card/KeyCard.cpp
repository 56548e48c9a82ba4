// SPDX-License-Identifier: MIT
#include "card/KeyCard.h"

#include "card/CardGestures.h"
#include "card/CardSentences.h"
#include "card/NeverReasons.h"
#include "model/RowProofs.h"

#include <algorithm>

using namespace model;

namespace {

const QString orvane = QStringLiteral("Orvane");

/// Lists of thousands of usual rows need a twentieth of them, because rows of two keys add no situations. A
/// search that reaches them has taken a tenth of a second.
constexpr Limits limits{50'000, 1'000'000};
/// Also a limit of the search: thousands of pairs may each need all keys of one long row.
constexpr int maxAddedKeys = 100;

/// A person at the panel, while the state stays the same: with two fingers, because no row needs more.
Environment assumptions()
{
    Environment environment = Environment::person();
    environment.panelKeysOnly = true;
    return environment;
}

/// Makes the parts of a card for given lists.
class CardMaker
{
public:
    explicit CardMaker(const KeyLists& lists)
        : m_model(lists), m_proofs(lists, assumptions(), limits), m_gestures(m_model)
    {}

    QVector<KeyCardState> states();
    QVector<KeyCardDeadRow> deadRows() const;
    /// A sentence for each list with rows that are neither proved to work nor not to work.
    QStringList unproved() const;

private:
    const KeyLists& lists() const { return m_model.lists(); }
    KeyCardState stateCard(State state, const QVector<RowId>& rows);
    bool isProved(RowId row, State state) const;
    bool isUnproved(RowId row) const;
    KeyCardEntry entryOf(RowId row, State state);
    KeyCardDeadRow deadRow(RowId row) const;

    KeyModel m_model;
    RowProofs m_proofs;
    CardGestures m_gestures;
};

QVector<KeyCardState> CardMaker::states()
{
    QVector<KeyCardState> cards;
    for (const State state : Alphabet::states()) {
        QVector<RowId> rows = lists().ids();
        const auto isOther = [&](RowId row) { return !isProved(row, state); };
        rows.erase(std::remove_if(rows.begin(), rows.end(), isOther), rows.end());
        if (state != State::Undefined || !rows.isEmpty()) {
            cards.append(stateCard(state, rows));
        }
    }
    return cards;
}

KeyCardState CardMaker::stateCard(State state, const QVector<RowId>& rows)
{
    KeyCardState card{Alphabet::nameOf(state), {}};
    const auto add = [&card](const KeyCardEntry& entry) {
        if (!entry.receivers.isEmpty()) {
            card.entries.append(entry);
        }
    };
    for (const Key key : Alphabet::keys()) {
        if (Alphabet::isOnPanel(key)) {
            add(m_gestures.singleKey(key, state));
        }
    }
    for (const RowId row : rows) {
        add(entryOf(row, state));
    }
    add(m_gestures.factoryReset(state));
    return card;
}

KeyCardEntry CardMaker::entryOf(RowId row, State state)
{
    KeyCardEntry entry = m_gestures.gesture(row, m_proofs.of(row, state));
    QStringList reasons = NeverReasons::byState(lists(), row);
    reasons.removeAll(QString());
    entry.rowNotes = reasons + entry.rowNotes;
    return entry;
}

/// Whether the row is proved to work in the state, with keys that can be listed.
bool CardMaker::isProved(RowId row, State state) const
{
    const RowVerdict& verdict = m_proofs.of(row, state);
    const int maxInputs = 2 * (lists().row(row).keyCount() + maxAddedKeys); // a press and a release
    return verdict.kind == RowVerdict::Kind::Announced && verdict.witness.inputs.size() <= maxInputs;
}

QVector<KeyCardDeadRow> CardMaker::deadRows() const
{
    QVector<KeyCardDeadRow> rows;
    for (const RowId row : lists().ids()) {
        if (m_proofs.isNever(row)) {
            rows.append(deadRow(row));
        }
    }
    return rows;
}

KeyCardDeadRow CardMaker::deadRow(RowId row) const
{
    const KeyEntry& entry = lists().row(row);
    const auto& states = Alphabet::states();
    const auto proofIn = [&](State state) -> const Proof& { return m_proofs.of(row, state).proof; };
    const State largest = *std::max_element(
        states.begin(), states.end(), [&](State a, State b) { return proofIn(a).steps < proofIn(b).steps; });
    const Proof& proof = proofIn(largest);
    return {CardGestures::kindOf(row.list),
            row.index + 1,
            entry.keys(),
            entry.eAction(),
            entry.receiverService(),
            entry.validOnState(),
            NeverReasons::of(m_model, row),
            proof.situations,
            proof.steps};
}

/// Whether it is open where the row works: in a state that it names, or at all.
bool CardMaker::isUnproved(RowId row) const
{
    const auto& named = m_model.rows().delivery(row).named;
    const auto& states = Alphabet::states();
    const auto isOpen = [&](State state) {
        return named[size_t(state)] > 0 && !isProved(row, state) &&
               m_proofs.of(row, state).kind != RowVerdict::Kind::Never;
    };
    const auto works = [&](State state) { return isProved(row, state); };
    return !m_proofs.isNever(row) && (std::any_of(states.begin(), states.end(), isOpen) ||
                                      std::none_of(states.begin(), states.end(), works));
}

QStringList CardMaker::unproved() const
{
    QStringList sentences;
    for (const List list : allLists) {
        QVector<int> rows;
        for (int i = 0; i < lists().rows(list).size(); ++i) {
            if (isUnproved({list, i})) {
                rows.append(i);
            }
        }
        if (!rows.isEmpty()) {
            sentences.append(CardSentences::notProved(list, rows.size(), rows.first() + 1));
        }
    }
    return sentences;
}

} // namespace

KeyCard KeyCard::from(const QMap<QString, QByteArray>& keyLists, const QString& model)
{
    return of(KeyLists::read(keyLists, model == orvane));
}

KeyCard KeyCard::of(const KeyLists& lists)
{
    CardMaker maker(lists);
    KeyCard card;
    card.model = lists.isOrvane ? orvane : QStringLiteral("Pellit");
    card.states = maker.states();
    card.deadRows = maker.deadRows();
    card.environment = assumptions().toText();
    for (const List list : lists.unreadable) {
        card.notes.append(
            QStringLiteral("%1 has no readable list, so none of its rows work.").arg(KeyLists::fileOf(list)));
    }
    const QStringList unproved = maker.unproved();
    card.isProved = unproved.isEmpty();
    card.notes += unproved;
    return card;
}

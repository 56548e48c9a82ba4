// SPDX-License-Identifier: MIT
#include "workbench/card/KeyCard.h"

#include "model/RowProofs.h"
#include "workbench/card/CardGestures.h"
#include "workbench/card/CardSearch.h"
#include "workbench/card/CardSentences.h"
#include "workbench/card/NeverReasons.h"

#include <algorithm>

using namespace model;

namespace {

/// Thousands of pairs may each need all keys of one long row.
constexpr int maxAddedKeys = 100;

/// Makes the parts of a card for given lists.
class CardMaker
{
public:
    explicit CardMaker(const KeyLists& lists)
        : m_model(lists), m_proofs(lists, CardSearch::environment(), CardSearch::limits), m_gestures(m_model)
    {}

    KeyCardState stateCard(State state);
    bool isAnnouncedIn(State state) const;
    QVector<KeyCardDeadRow> deadRows() const;
    /// A sentence for each list with rows that are not proved, or whose keys are too many to list.
    QStringList unproved() const;

private:
    const KeyLists& lists() const { return m_model.lists(); }
    bool isAnnounced(RowId row, State state) const
    {
        return m_proofs.of(row, state).kind == RowVerdict::Kind::Announced;
    }
    bool isListed(RowId row, State state) const;
    bool isUnproved(RowId row) const;
    KeyCardEntry entryOf(RowId row, State state);
    KeyCardDeadRow deadRow(RowId row, const QString& why) const;

    KeyModel m_model;
    RowProofs m_proofs;
    CardGestures m_gestures;
};

KeyCardState CardMaker::stateCard(State state)
{
    KeyCardState card{Alphabet::nameOf(state), {}};
    const auto add = [&card](const std::optional<KeyCardEntry>& entry) {
        if (entry) {
            card.entries.append(*entry);
        }
    };
    for (const Key key : Alphabet::keys()) {
        if (Alphabet::isOnPanel(key)) {
            add(m_gestures.singleKey(key, state));
        }
    }
    for (const RowId row : lists().ids()) {
        if (isListed(row, state)) {
            card.entries.append(entryOf(row, state));
        }
    }
    add(m_gestures.factoryReset(state));
    return card;
}

KeyCardEntry CardMaker::entryOf(RowId row, State state)
{
    KeyCardEntry entry = m_gestures.gesture(row, m_proofs.of(row, state));
    QStringList reasons;
    const QStringList states = lists().statesOf(row);
    for (const QString& name : states) {
        const auto named = Alphabet::stateOf(name);
        if (!named || m_proofs.of(row, *named).kind == RowVerdict::Kind::Never) {
            reasons.append(NeverReasons::whyNotIn(name, row.list));
        }
    }
    reasons.removeDuplicates();
    entry.rowNotes = reasons + entry.rowNotes;
    return entry;
}

bool CardMaker::isListed(RowId row, State state) const
{
    const int maxInputs = 2 * (lists().row(row).keyCount() + maxAddedKeys); // a press and a release
    return isAnnounced(row, state) && m_proofs.of(row, state).witness.inputs.size() <= maxInputs;
}

bool CardMaker::isAnnouncedIn(State state) const
{
    const auto ids = lists().ids();
    return std::any_of(ids.begin(), ids.end(), [&](RowId row) { return isAnnounced(row, state); });
}

QVector<KeyCardDeadRow> CardMaker::deadRows() const
{
    NeverReasons reasons(lists());
    QVector<KeyCardDeadRow> rows;
    for (const RowId row : lists().ids()) {
        if (m_proofs.isNever(row)) {
            rows.append(deadRow(row, reasons.of(row)));
        }
    }
    return rows;
}

KeyCardDeadRow CardMaker::deadRow(RowId row, const QString& why) const
{
    const KeyEntry& entry = lists().row(row);
    const Proof& proof = m_proofs.of(row, Alphabet::states().first()).proof;
    return {CardGestures::kindOf(row.list),
            row.index + 1,
            entry.keys(),
            entry.eAction(),
            entry.receiverService(),
            entry.validOnState(),
            why,
            proof.situations,
            proof.steps};
}

bool CardMaker::isUnproved(RowId row) const
{
    const auto& named = m_model.rows().delivery(row).named;
    bool isAnnouncedAnywhere = false;
    for (const State state : Alphabet::states()) {
        const bool isOpen =
            named[size_t(state)] > 0 && m_proofs.of(row, state).kind == RowVerdict::Kind::NotProved;
        if (isOpen || (isAnnounced(row, state) && !isListed(row, state))) {
            return true;
        }
        isAnnouncedAnywhere = isAnnouncedAnywhere || isAnnounced(row, state);
    }
    return !isAnnouncedAnywhere && !m_proofs.isNever(row);
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
    return of(KeyLists::read(keyLists, model == QLatin1String("Orvane")), model);
}

KeyCard KeyCard::of(const KeyLists& lists, const QString& model)
{
    CardMaker maker(lists);
    KeyCard card;
    card.model = model;
    for (const State state : Alphabet::states()) {
        if (state != State::Undefined || maker.isAnnouncedIn(state)) {
            card.states.append(maker.stateCard(state));
        }
    }
    card.deadRows = maker.deadRows();
    card.environment = CardSearch::environment().toText();
    for (const List list : lists.unreadable) {
        card.notes.append(
            QStringLiteral("%1 has no readable list, so none of its rows work.").arg(KeyLists::fileOf(list)));
    }
    card.notes += maker.unproved();
    return card;
}

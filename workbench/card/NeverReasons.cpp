// SPDX-License-Identifier: MIT
#include "workbench/card/NeverReasons.h"

#include "keys/KeyRules.h"
#include "model/Autorepeat.h"
#include "model/KeyFacts.h"
#include "model/Playback.h"
#include "vocabulary/Vocabulary.h"
#include "workbench/card/CardSearch.h"

#include <ls/Identifiers.h>

#include <algorithm>

using namespace model;

namespace {

/// The most rows that are tried as the cause of another row's failure.
constexpr int maxSuspects = 4;

QString number(int index)
{
    return QString::number(index + 1);
}

KeyLists deliverable(KeyLists lists)
{
    for (QList<KeyEntry>* rows : {&lists.longPresses, &lists.combinations, &lists.shortcuts}) {
        for (KeyEntry& row : *rows) {
            row = KeyEntry(row.keys(), row.eAction(), row.timeout(), ls::ServiceId::UserMenu,
                           ls::StateId::Idle);
        }
    }
    return lists;
}

RowProofs proofsOf(const KeyLists& lists)
{
    Environment environment = CardSearch::environment();
    environment.startStates = {KeyFacts::idle};
    return RowProofs(lists, environment, CardSearch::limits);
}

bool isAnnounced(const RowProofs& proofs, RowId row)
{
    return proofs.of(row, KeyFacts::idle).kind == RowVerdict::Kind::Announced;
}

/// The keys that decide about the row.
QStringList keysOf(const KeyEntry& row, List list)
{
    if (!row.isValid() || (list == List::Combinations && row.isSequence())) {
        return row.keys();
    }
    return list == List::LongPresses ? QStringList(row.firstKey())
                                     : QStringList{row.firstKey(), row.lastKey()};
}

/// A sentence if there are no keys, or one that the panel does not have; empty otherwise.
QString missingKeys(const QStringList& keys)
{
    if (keys.isEmpty()) {
        return QStringLiteral("The row has no keys.");
    }
    for (const QString& name : keys) {
        const auto key = Alphabet::keyOf(name);
        if (!key || !Alphabet::isOnPanel(*key)) {
            return QStringLiteral("The panel has no key \"%1\".").arg(name);
        }
    }
    return {};
}

Playback tapped(const KeyModel& keyModel, const QStringList& keys)
{
    Playback playback(keyModel, KeyFacts::idle);
    for (const QString& name : keys) {
        const Key key = *Alphabet::keyOf(name);
        playback.press(key);
        playback.release(key);
    }
    return playback;
}

/// The effects of `rule`, in order.
QVector<Effect> effectsOf(const Playback& playback, Rule rule)
{
    QVector<Effect> effects;
    for (const PlayedStep& step : playback.steps()) {
        for (const Effect& effect : step.effects) {
            if (effect.rule == rule) {
                effects.append(effect);
            }
        }
    }
    return effects;
}

} // namespace

QString NeverReasons::of(RowId row)
{
    const KeyEntry& entry = m_lists.row(row);
    const QString missing = missingKeys(keysOf(entry, row.list));
    if (!missing.isEmpty()) {
        return missing;
    }
    if (!isCompleted(row)) {
        return row.list == List::Combinations ? whyNotCompleted(row.index) : whyNotCompleted(row);
    }
    if (entry.receiverService() == vocabulary::undefined) {
        return QStringLiteral("The action is dropped, because its receiver is \"Undefined\".");
    }
    QStringList reasons;
    const QStringList states = m_lists.statesOf(row);
    for (const QString& state : states) {
        reasons.append(whyNotIn(state, row.list));
    }
    reasons.removeDuplicates();
    return reasons.join(QLatin1Char(' '));
}

QString NeverReasons::whyNotIn(const QString& state, List list)
{
    if (state == ls::StateId::Startup) {
        return QStringLiteral("Keys are ignored in Startup, except for a long press that began before.");
    }
    if (Alphabet::stateOf(state)) {
        return QStringLiteral("No combination can begin in %1: each key is announced and forgotten there.")
            .arg(state);
    }
    if (list != List::LongPresses && state.contains(KeyRules::stateSeparator)) {
        return QStringLiteral("Only a long press can join states; \"%1\" is not a state.").arg(state);
    }
    return QStringLiteral("Unknown state \"%1\".").arg(state);
}

bool NeverReasons::isCompleted(RowId row)
{
    if (!m_proofs) {
        m_deliverable = std::make_unique<KeyModel>(deliverable(m_lists));
        m_proofs = std::make_unique<RowProofs>(proofsOf(m_deliverable->lists()));
    }
    return isAnnounced(*m_proofs, row);
}

bool NeverReasons::isCompletedWithout(int other, int combination)
{
    auto found = m_proofsWithout.find(other);
    if (found == m_proofsWithout.end()) {
        KeyLists lists = m_deliverable->lists().only(List::Combinations);
        lists.combinations.removeAt(other);
        found = m_proofsWithout.emplace(other, proofsOf(lists)).first;
    }
    return isAnnounced(found->second,
                       {List::Combinations, combination > other ? combination - 1 : combination});
}

/// For a long press or a shortcut: another row decides about its keys.
QString NeverReasons::whyNotCompleted(RowId row) const
{
    const KeyEntry& entry = m_lists.row(row);
    const Key first = *Alphabet::keyOf(entry.firstKey());
    Playback playback(*m_deliverable, KeyFacts::idle);
    playback.press(first);
    if (row.list == List::LongPresses) {
        playback.wait(Autorepeat::delay);
        const auto armed = effectsOf(playback, Rule::LongPressArms);
        return QStringLiteral("Only the last row for a key works; for %1, that is row %2.")
            .arg(entry.firstKey(), number(armed.value(0).row.index));
    }
    const Key last = *Alphabet::keyOf(entry.lastKey());
    playback.press(last, first == last ? 1 : 0);
    const auto completed = effectsOf(playback, Rule::ShortcutCompletes);
    return QStringLiteral("Only the first row for a pair of keys works; for %1 and %2, that is row %3.")
        .arg(entry.firstKey(), entry.lastKey(), number(completed.value(0).row.index));
}

/// Names the row without which the combination would work.
QString NeverReasons::whyNotCompleted(int combination)
{
    const bool isSequence = m_lists.combinations.at(combination).isSequence();
    const int firstSequence = m_deliverable->rows().firstSequence();
    if (isSequence && combination != firstSequence) {
        return QStringLiteral("Only the first row of three or more keys can match, and that is row %1.")
            .arg(number(firstSequence));
    }
    const QVector<int> all = suspects(combination);
    const auto found = std::find_if(all.begin(), all.end(), [this, combination](int suspect) {
        return isCompletedWithout(suspect, combination);
    });
    const int cause = found == all.end() ? all.value(0, -1) : *found;
    if (cause == -1) {
        return QStringLiteral("Menu is announced at its release, and all keys before it are forgotten.");
    }
    return isSequence
               ? QStringLiteral("Row %1 is complete with %2 and breaks the sequence.")
                     .arg(number(cause), m_lists.combinations.at(cause).lastKey())
               : QStringLiteral("Row %1 has three or more keys and hides this row.").arg(number(cause));
}

/// For a pair the rows before it that can hide it; for a longer row the pairs that its own keys complete.
QVector<int> NeverReasons::suspects(int combination) const
{
    QVector<int> rows;
    if (!m_lists.combinations.at(combination).isSequence()) {
        for (const int row :
             {m_deliverable->rows().firstSequence(), m_deliverable->rows().secondSequence()}) {
            if (row >= 0 && row < combination) {
                rows.append(row);
            }
        }
        return rows;
    }
    const QStringList own = m_lists.combinations.at(combination).keys();
    for (const QStringList& keys : {own, QStringList(ls::KeyId::Help) + own}) {
        const Playback playback = tapped(*m_deliverable, keys);
        for (const Effect& effect : effectsOf(playback, Rule::CombinationCompletes)) {
            if (effect.row.index != combination && rows.size() < maxSuspects &&
                !rows.contains(effect.row.index)) {
                rows.append(effect.row.index);
            }
        }
    }
    return rows;
}

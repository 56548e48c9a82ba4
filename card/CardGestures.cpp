// SPDX-License-Identifier: MIT
#include "card/CardGestures.h"

#include "card/CardSentences.h"
#include "keys/KeyRules.h"
#include "model/KeyFacts.h"
#include "model/Witness.h"

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace {

constexpr milliseconds tapTime{50};

bool has(const PlayedStep& step, Rule rule)
{
    return std::any_of(step.effects.begin(), step.effects.end(),
                       [rule](const Effect& effect) { return effect.rule == rule; });
}

bool has(const Playback& playback, Rule rule)
{
    return std::any_of(playback.steps().begin(), playback.steps().end(),
                       [rule](const PlayedStep& step) { return has(step, rule); });
}

KeyCardConsequence consequenceOf(const Playback& tap, Key key)
{
    if (has(tap, Rule::KeySentAtOnce)) {
        return KeyCardConsequence::NotSpokenAnnouncedAtRelease;
    }
    if (has(tap, Rule::MenuSentAtOnce)) {
        return KeyCardConsequence::MenuNotSpokenAnnouncedAtRelease;
    }
    if (has(tap, Rule::NameOmitted)) {
        return KeyCardConsequence::NotSpokenAnnouncedAfterWait;
    }
    return KeyFacts::hasName(key) ? KeyCardConsequence::SpokenAnnouncedAfterWait
                                  : KeyCardConsequence::SpokenAsZeroAnnouncedAfterWait;
}

/// What a gesture also announces, in one order of releases or the other.
QVector<KeyCardConsequence> consequencesOf(KeyCardKind kind, const QVector<Playback>& endings)
{
    const auto sends = [&endings](Rule rule) {
        return std::any_of(endings.begin(), endings.end(),
                           [rule](const Playback& ending) { return has(ending, rule); });
    };
    const auto sendsLastKey = [&endings](bool isAfterMenu) {
        return std::any_of(endings.begin(), endings.end(), [isAfterMenu](const Playback& ending) {
            return has(ending, Rule::LoneKeySent) && has(ending, Rule::MenuSentAtOnce) == isAfterMenu;
        });
    };
    QVector<KeyCardConsequence> consequences;
    if (sends(Rule::KeySentAtOnce)) {
        consequences.append(KeyCardConsequence::EachRelease);
    }
    if (sends(Rule::MenuSentAtOnce)) {
        consequences.append(kind == KeyCardKind::Combination ? KeyCardConsequence::Menu
                            : sendsLastKey(true) ? KeyCardConsequence::MenuUnlessAfterHelpAndNextKey
                                                 : KeyCardConsequence::MenuUnlessAfterHelp);
    }
    if (sendsLastKey(false)) {
        consequences.append(KeyCardConsequence::LastKey);
    }
    if (kind != KeyCardKind::Hold && sends(Rule::FactoryResetCompletes)) {
        consequences.append(KeyCardConsequence::FactoryReset);
    }
    return consequences;
}

/// The keys of a gesture: those of a combination are complete when they are released.
QStringList keysIn(const Run& run, List list)
{
    const auto kind = list == List::Combinations ? Input::Kind::Release : Input::Kind::Press;
    QStringList keys;
    for (const Input input : run.inputs) {
        if (input.kind == kind) {
            keys.append(Alphabet::nameOf(input.key()));
        }
    }
    return keys;
}

/// The presses of the keys that are still down after `run`.
QVector<Input> keysDownAfter(const Run& run)
{
    QVector<Input> down;
    for (const Input input : run.inputs) {
        if (input.kind == Input::Kind::Press) {
            down.append(input);
        } else if (input.kind == Input::Kind::Release) {
            down.removeOne(Input::press(input.key(), input.device));
        }
    }
    return down;
}

/// Releases the keys at once, because a long press without time repeats, and waits for all effects.
Playback ended(Playback playback, const QVector<Input>& presses)
{
    for (const Input press : presses) {
        playback.release(press.key(), press.device);
        playback.wait(tapTime);
    }
    playback.wait(KeyRules::singleKeyInterval);
    return playback;
}

/// Ascending.
QVector<RowId> announcedRows(const Playback& playback)
{
    QVector<RowId> rows;
    for (const PlayedStep& step : playback.steps()) {
        for (const Effect& effect : step.effects) {
            if (effect.rule == Rule::Announces) {
                rows.append(effect.row);
            }
        }
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

/// What `playback` announces apart from rows.
KeyCardEntry entryOf(KeyCardKind kind, Key key, const Playback& playback)
{
    KeyCardEntry entry;
    entry.kind = kind;
    entry.keys = QStringList(Alphabet::nameOf(key));
    for (const PlayedStep& step : playback.steps()) {
        for (const Output& output : step.outputs) {
            if (output.kind == Output::Kind::Announce && !has(step, Rule::Announces)) {
                entry.action = output.text;
                entry.receivers.append(output.receiver);
            }
        }
    }
    return entry;
}

/// How often Menu directly follows Help.
int menusAfterHelp(const QStringList& keys)
{
    static const QString pair =
        Alphabet::nameOf(KeyFacts::help) + QLatin1Char(' ') + Alphabet::nameOf(KeyFacts::menu);
    return keys.join(QLatin1Char(' ')).count(pair);
}

} // namespace

KeyCardEntry CardGestures::singleKey(Key key, State state) const
{
    Playback tap(m_model, state);
    tap.press(key);
    tap.wait(tapTime);
    tap.release(key);
    tap.wait(KeyRules::singleKeyInterval);
    KeyCardEntry entry = entryOf(KeyCardKind::Single, key, tap);
    entry.consequences = {consequenceOf(tap, key)};
    return entry;
}

KeyCardEntry CardGestures::factoryReset(State state) const
{
    const Input press = Input::press(KeyFacts::factoryReset);
    Playback hold(m_model, state);
    hold.press(press.key());
    hold.wait(KeyRules::factoryResetHold);
    KeyCardEntry entry = entryOf(KeyCardKind::Hold, press.key(), hold);
    entry.holdMs = int(hold.now().count());
    entry.consequences = consequencesOf(entry.kind, {ended(hold, {press})});
    return entry;
}

KeyCardEntry CardGestures::gesture(RowId row, const RowVerdict& verdict)
{
    const Played& played = play(row.list, verdict);
    const KeyEntry& own = m_model.lists().row(row);
    KeyCardEntry entry = played.entry;
    entry.action = own.eAction();
    entry.receivers = QStringList(own.receiverService());
    entry.timesAnnounced = played.times.value(row, 1);
    if (menusAfterHelp(entry.keys) > menusAfterHelp(keysOf(own, row.list))) {
        entry.rowNotes.append(QStringLiteral("Without Help before it, Menu is announced at once."));
    }
    entry.rowNotes += othersOf(row, played);
    return entry;
}

KeyCardKind CardGestures::kindOf(List list)
{
    static constexpr KeyCardKind kinds[] = {KeyCardKind::Long, KeyCardKind::Combination,
                                            KeyCardKind::Shortcut};
    return kinds[int(list)];
}

QStringList CardGestures::keysOf(const KeyEntry& row, List list)
{
    if (!row.isValid() || (list == List::Combinations && row.isSequence())) {
        return row.keys();
    }
    return list == List::LongPresses ? QStringList(row.firstKey())
                                     : QStringList{row.firstKey(), row.lastKey()};
}

const CardGestures::Played& CardGestures::play(List list, const RowVerdict& verdict)
{
    const QVector<Input>& inputs = verdict.witness.inputs;
    QByteArray name(reinterpret_cast<const char*>(inputs.constData()), inputs.size() * int(sizeof(Input)));
    name.append(static_cast<char>(list)).append(static_cast<char>(verdict.witness.start));
    auto found = m_played.find(name);
    if (found == m_played.end()) {
        found = m_played.insert(name, played(list, verdict.proof.environment, verdict.witness));
    }
    return *found;
}

CardGestures::Played CardGestures::played(List list, const Environment& environment, const Run& run) const
{
    const Playback completed = Witness::play(m_model, environment, run);
    const milliseconds end = completed.steps().last().at;
    Played played;
    KeyCardEntry& entry = played.entry;
    entry.kind = kindOf(list);
    entry.keys = keysIn(run, list);
    entry.holdMs = list == List::LongPresses ? int(end.count()) : 0;
    for (const PlayedStep& step : completed.steps()) {
        for (const Effect& effect : step.effects) {
            if (step.at == end && effect.rule == Rule::Announces) {
                played.times[effect.row] += int(effect.count);
            } else if (step.at < end && effect.rule == Rule::CombinationCompletes &&
                       list == effect.row.list) {
                entry.rowNotes.append(
                    QStringLiteral("Row %1 is complete with %2 and begins the sequence.")
                        .arg(QString::number(effect.row.index + 1), Alphabet::nameOf(effect.key)));
            }
        }
    }
    const QVector<Input> down = keysDownAfter(run);
    const Playback firstFirst = ended(completed, down);
    const Playback lastFirst = ended(completed, QVector<Input>(down.crbegin(), down.crend()));
    entry.consequences = consequencesOf(entry.kind, {lastFirst, firstFirst});
    const QVector<RowId> rows = announcedRows(lastFirst);
    const QVector<RowId> otherRows = announcedRows(firstFirst);
    if (rows == otherRows) {
        played.rows.insert(QString(), rows);
    } else {
        played.rows.insert(Alphabet::nameOf(down.last().key()), rows);
        played.rows.insert(Alphabet::nameOf(down.first().key()), otherRows);
    }
    return played;
}

QStringList CardGestures::othersOf(RowId row, const Played& played) const
{
    QStringList sentences;
    for (auto it = played.rows.begin(); it != played.rows.end(); ++it) {
        // Not a copy without the row: thousands of rows may be announced together.
        const QVector<RowId>& all = it.value();
        const int others = all.size() - (std::binary_search(all.begin(), all.end(), row) ? 1 : 0);
        QStringList actions;
        for (int i = 0; actions.size() < qMin(others, CardSentences::maxActions); ++i) {
            if (!(all.at(i) == row)) {
                actions.append(m_model.lists().row(all.at(i)).eAction());
            }
        }
        if (others > 0) {
            sentences.append(CardSentences::alsoAnnounced(actions, others - actions.size(), it.key()));
        }
    }
    return sentences;
}

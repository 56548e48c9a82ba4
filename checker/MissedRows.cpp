// SPDX-License-Identifier: MIT
#include "checker/MissedRows.h"

#include "checker/OutputWords.h"
#include "checker/Times.h"
#include "keys/KeyRules.h"
#include "model/KeyFacts.h"

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

/// Two keys with more time between them are not meant as one gesture.
constexpr milliseconds maxPause{5000};
/// For the keys of a gesture that is played.
constexpr milliseconds playedPause{50};

bool isMovement(const PlayedStep& step, Input::Kind kind)
{
    return step.origin != PlayedStep::Origin::Time && step.input.kind == kind;
}

bool completesAny(const PlayedStep& step)
{
    return std::any_of(step.effects.begin(), step.effects.end(), [](const Effect& effect) {
        return effect.rule == Rule::ShortcutCompletes || effect.rule == Rule::CombinationCompletes;
    });
}

/// The last movement of this kind before `step`, not long ago; -1 if there is none.
int previous(const QVector<PlayedStep>& steps, int step, Input::Kind kind)
{
    for (int i = step - 1; i >= 0 && steps.at(step).at - steps.at(i).at <= maxPause; --i) {
        if (isMovement(steps.at(i), kind)) {
            return i;
        }
    }
    return -1;
}

/// The keys that are down before `step`.
QVector<Key> keysDown(const QVector<PlayedStep>& steps, int step)
{
    QVector<Key> down;
    for (int i = 0; i < step; ++i) {
        const Input input = steps.at(i).input;
        if (isMovement(steps.at(i), Input::Kind::Press)) {
            down.append(input.key());
        } else if (isMovement(steps.at(i), Input::Kind::Release)) {
            down.removeOne(input.key());
        }
    }
    return down;
}

QStringList phrases(const QStringList& actions, const QString& reason)
{
    QStringList texts;
    for (const QString& action : actions) {
        texts.append(
            QStringLiteral("%1 is not completed: %2").arg(OutputWords::enumeration({action}), reason));
    }
    return texts;
}

} // namespace

QStringList MissedRows::phrasesOf(const QVector<PlayedStep>& steps, int step) const
{
    const PlayedStep& played = steps.at(step);
    if (completesAny(played) || played.before.state == KeyFacts::startup) {
        return {};
    }
    if (isMovement(played, Input::Kind::Press)) {
        return afterPress(steps, step);
    }
    return isMovement(played, Input::Kind::Release) ? afterRelease(steps, step) : QStringList();
}

QStringList MissedRows::afterPress(const QVector<PlayedStep>& steps, int step) const
{
    const Key key = steps.at(step).input.key();
    const State state = steps.at(step).before.state;
    const QVector<Key> down = keysDown(steps, step);
    QStringList texts;
    for (const Key other : down) {
        texts += phrases(actionsOf(List::Shortcuts, {key, other, state}),
                         QStringLiteral("%1 must be pressed before %2")
                             .arg(Alphabet::nameOf(key), Alphabet::nameOf(other)));
    }
    const int release = previous(steps, step, Input::Kind::Release);
    if (down.isEmpty() && release != -1) {
        const Key other = steps.at(release).input.key();
        texts += phrases(actionsOf(List::Shortcuts, {other, key, state}),
                         QStringLiteral("%1 was released before %2 was pressed")
                             .arg(Alphabet::nameOf(other), Alphabet::nameOf(key)));
    }
    return texts;
}

QStringList MissedRows::afterRelease(const QVector<PlayedStep>& steps, int step) const
{
    const PlayedStep& played = steps.at(step);
    const int release = previous(steps, step, Input::Kind::Release);
    if (release == -1) {
        return {};
    }
    const Key other = steps.at(release).input.key();
    const QString keyName = Alphabet::nameOf(played.input.key());
    const QString otherName = Alphabet::nameOf(other);
    const milliseconds pause = played.at - steps.at(release).at;
    const QStringList actions = actionsOf(List::Combinations, {other, played.input.key(), KeyFacts::idle});
    if (played.before.state != KeyFacts::idle) {
        return phrases(
            actions,
            QStringLiteral("in %1, each key is sent at once").arg(Alphabet::nameOf(played.before.state)));
    }
    if (pause >= KeyRules::singleKeyInterval) {
        return phrases(actions, QStringLiteral("%1 was released %2 after %3, and %4 is the limit")
                                    .arg(keyName, Times::duration(pause), otherName,
                                         Times::duration(KeyRules::singleKeyInterval)));
    }
    return phrases(actionsOf(List::Combinations, {played.input.key(), other, KeyFacts::idle}),
                   QStringLiteral("%1 must be released before %2").arg(keyName, otherName));
}

QStringList MissedRows::actionsOf(List list, const Keys& keys) const
{
    const QStringList names{Alphabet::nameOf(keys.first), Alphabet::nameOf(keys.second)};
    QVector<RowId> rows;
    for (int i = 0; i < m_lists.rows(list).size(); ++i) {
        const KeyEntry& row = m_lists.rows(list).at(i);
        const bool isMeant = m_action.isNull() || row.eAction() == m_action;
        if (isMeant && keys.first != keys.second && row.keys() == names) {
            rows.append({list, i});
        }
    }
    const QVector<RowId> working = rows.isEmpty() ? rows : announcedRows(list, keys);
    QStringList actions;
    for (const RowId row : qAsConst(rows)) {
        if (working.contains(row)) {
            actions.append(m_lists.row(row).eAction());
        }
    }
    return actions;
}

/// The rows that the keys announce, as a shortcut or as a combination.
QVector<RowId> MissedRows::announcedRows(List list, const Keys& keys) const
{
    const KeyModel keyModel(m_lists);
    Playback playback(keyModel, keys.state);
    playback.press(keys.first);
    playback.wait(playedPause);
    if (list == List::Combinations) {
        playback.release(keys.first);
        playback.wait(playedPause);
    }
    playback.press(keys.second);
    playback.wait(playedPause);
    playback.release(keys.second);
    QVector<RowId> rows;
    for (const PlayedStep& step : playback.steps()) {
        for (const Effect& effect : step.effects) {
            if (effect.rule == Rule::Announces) {
                rows.append(effect.row);
            }
        }
    }
    return rows;
}

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/EffectWords.h"

#include "checker/HiddenPairs.h"
#include "checker/MissedRows.h"
#include "checker/OutputWords.h"
#include "checker/Times.h"
#include "keys/KeyRules.h"
#include "model/KeyFacts.h"

#include <ls/Identifiers.h>

#include <algorithm>

using namespace model;

namespace checker {

namespace {

bool announces(const PlayedStep& step, RowId row)
{
    return std::any_of(step.effects.begin(), step.effects.end(), [row](const Effect& effect) {
        return effect.rule == Rule::Announces && effect.row == row;
    });
}

QString receiversOf(const PlayedStep& step, Key key)
{
    return OutputWords::enumeration(
        KeyRules::singleKeyReceivers(Alphabet::nameOf(key), Alphabet::nameOf(step.after.state)));
}

} // namespace

QString EffectWords::eventOf(const PlayedStep& step)
{
    const Input input = step.input;
    const auto ofKey = [input](const char* event) {
        return Alphabet::nameOf(input.key()) + QLatin1Char(' ') + QLatin1String(event);
    };
    switch (input.kind) {
    case Input::Kind::Press:
        return ofKey("down");
    case Input::Kind::Release:
        return ofKey("up");
    case Input::Kind::Repeat:
        return ofKey("repeats");
    case Input::Kind::WindowEnd:
        return Times::duration(KeyRules::singleKeyInterval) + QStringLiteral(" over");
    case Input::Kind::LongPressTime:
        return Alphabet::nameOf(step.before.armedKey) + QStringLiteral(" held");
    case Input::Kind::FactoryResetTime:
        return QStringLiteral("FactoryReset held");
    case Input::Kind::ChangeState:
        return QStringLiteral("state ") + Alphabet::nameOf(input.newState());
    case Input::Kind::StartTest:
        return QStringLiteral("test begins");
    case Input::Kind::SimulateCombination:
    case Input::Kind::SimulateShortcut:
        return ofKey("simulated");
    case Input::Kind::Tick:
        break;
    }
    return {};
}

QStringList EffectWords::phrasesOf(const QVector<PlayedStep>& steps, int step) const
{
    QStringList phrases;
    for (int i = 0; i < steps.at(step).effects.size(); ++i) {
        const QString phrase = phraseOf(steps, step, i);
        if (!phrase.isEmpty()) {
            phrases.append(phrase);
        }
    }
    const QString closed = closedDoor(steps.at(step));
    if (!closed.isEmpty()) {
        phrases.append(closed);
    }
    return phrases + MissedRows(m_lists).phrasesOf(steps, step);
}

QString EffectWords::refusal(const PlayedStep& step, const Effect& effect) const
{
    if (effect.rule == Rule::DropsReceiver) {
        return QStringLiteral("%1 is dropped: its receiver is \"Undefined\"").arg(actionOf(effect.row));
    }
    if (effect.rule != Rule::RefusesState || announces(step, effect.row)) {
        return {};
    }
    return QStringLiteral("%1 is refused: it is valid in %2 and the state is %3")
        .arg(actionOf(effect.row), statesOf(effect.row), Alphabet::nameOf(step.after.state));
}

QStringList EffectWords::missed(const QVector<PlayedStep>& steps, int step, const QString& action) const
{
    const QString fact = QStringLiteral("%1 is not completed: ").arg(OutputWords::enumeration({action}));
    const QString release =
        fact + Alphabet::nameOf(steps.at(step).input.key()) + QStringLiteral(" is released");
    QStringList phrases;
    for (const Effect& effect : steps.at(step).effects) {
        const bool isRow = effect.rule == Rule::LongPressStops && m_lists.row(effect.row).eAction() == action;
        const QString early = isRow ? earliness(steps, step, effect.row) : QString();
        if (!early.isEmpty()) {
            phrases.append(release + early);
        } else if (effect.rule == Rule::FactoryResetStops && action == ls::KeyboardActionId::FactoryReset) {
            phrases.append(
                release +
                QStringLiteral(" before %1 are over").arg(Times::duration(KeyRules::factoryResetHold)));
        }
    }
    return phrases + MissedRows(m_lists, action).phrasesOf(steps, step);
}

QString EffectWords::nameOf(RowId row) const
{
    return QStringLiteral("row %1 of %2, %3")
        .arg(QString::number(row.index + 1), KeyLists::fileOf(row.list), actionOf(row));
}

QString EffectWords::statesOf(RowId row) const
{
    return OutputWords::enumeration(m_lists.statesOf(row));
}

QString EffectWords::phraseOf(const QVector<PlayedStep>& steps, int step, int effect) const
{
    const PlayedStep& played = steps.at(step);
    const Effect& applied = played.effects.at(effect);
    if (applied.rule == Rule::NameSilenced && played.has(Rule::CombinationCompletes)) {
        return QStringLiteral("is spoken"); // as the key that completes it
    }
    if (applied.rule == Rule::NameSilenced || applied.rule == Rule::LoneKeyUsedUp) {
        const QString key = Alphabet::nameOf(applied.key);
        const QString what = applied.rule == Rule::NameSilenced ? QStringLiteral("is not spoken")
                                                                : QStringLiteral("%1 is not sent").arg(key);
        return what + QStringLiteral(": ") + phraseOfSilence(steps, step);
    }
    const QString phrase = phraseOfRow(steps, step, applied);
    return phrase.isEmpty() ? phraseOfKey(played, applied) : phrase;
}

/// How much too early a key is released that has not completed its long press.
QString EffectWords::earliness(const QVector<PlayedStep>& steps, int step, RowId row) const
{
    if (steps.at(step).input.kind != Input::Kind::Release) {
        return {};
    }
    const auto has = [row](const PlayedStep& played, Rule rule) {
        return std::any_of(played.effects.begin(), played.effects.end(),
                           [&](const Effect& effect) { return effect.rule == rule && effect.row == row; });
    };
    int begin = step;
    while (begin > 0 && !has(steps.at(begin), Rule::LongPressArms)) {
        --begin;
    }
    const bool isRepeated = begin > 0 && has(steps.at(begin - 1), Rule::LongPressCompletes);
    const auto missing =
        std::chrono::milliseconds(m_lists.row(row).timeout()) - (steps.at(step).at - steps.at(begin).at);
    return isRepeated ? QString() : QStringLiteral(", %1 too early").arg(Times::duration(missing));
}

QString EffectWords::phraseOfRow(const QVector<PlayedStep>& steps, int step, const Effect& effect) const
{
    switch (effect.rule) {
    case Rule::ShortcutOpens:
        return placed(QStringLiteral("opens shortcuts with %1").arg(Alphabet::nameOf(effect.key)),
                      effect.row);
    case Rule::CombinationOpens:
        return placed(QStringLiteral("opens combinations with %1").arg(Alphabet::nameOf(effect.key)),
                      effect.row);
    case Rule::ShortcutCompletes:
    case Rule::CombinationCompletes:
    case Rule::LongPressCompletes:
        return placed(QStringLiteral("completes %1").arg(actionOf(effect.row)), effect.row);
    case Rule::SequenceHides:
        return hiddenBy(steps.at(step), effect);
    case Rule::LongPressArms:
        return placed(QStringLiteral("begins the time of %1, %2")
                          .arg(actionOf(effect.row), Times::duration(std::chrono::milliseconds(
                                                         qMax(0, m_lists.row(effect.row).timeout())))),
                      effect.row);
    case Rule::LongPressStops:
        return placed(QStringLiteral("stops the time of %1").arg(actionOf(effect.row)) +
                          earliness(steps, step, effect.row),
                      effect.row);
    case Rule::Announces:
        return QStringLiteral("%1 is announced to %2")
            .arg(actionOf(effect.row), OutputWords::enumeration({m_lists.row(effect.row).receiverService()}));
    case Rule::RefusesState:
    case Rule::DropsReceiver:
        return refusal(steps.at(step), effect);
    default:
        return {};
    }
}

QString EffectWords::phraseOfKey(const PlayedStep& step, const Effect& effect) const
{
    const QString key = Alphabet::nameOf(effect.key);
    const auto sent = [&] {
        return QStringLiteral("%1 is sent to %2").arg(key, receiversOf(step, effect.key));
    };
    switch (effect.rule) {
    case Rule::StartupRefuses:
        return QStringLiteral("is refused: the device is starting up, and says so");
    case Rule::StartupIgnores:
        return QStringLiteral("is ignored: the device is starting up");
    case Rule::ShortcutCloses:
        return QStringLiteral("closes the shortcuts with %1").arg(key);
    case Rule::KeyReplaced:
        return QStringLiteral("%1 waits no longer and is not sent").arg(key);
    case Rule::MenuSentAtOnce:
    case Rule::KeySentAtOnce:
    case Rule::LoneKeySent:
        return sent();
    case Rule::NameSpoken:
        return QStringLiteral("is spoken");
    case Rule::NameOmitted:
        return QStringLiteral("is not spoken: the name of %1 never is on a Pellit").arg(key);
    case Rule::KeyWaits:
        return effect.key == Key::None ? QStringLiteral("is never sent")
                                       : QStringLiteral("waits %1 for further keys")
                                             .arg(Times::duration(KeyRules::singleKeyInterval));
    case Rule::LoneKeyDropped:
        return QStringLiteral("%1 is not sent: the state is no longer Idle").arg(key);
    case Rule::TestNameSpoken:
        return QStringLiteral("is spoken, in the keyboard test");
    case Rule::TestEnds:
        return QStringLiteral("ends the keyboard test: ") + sent();
    case Rule::FactoryResetStarts:
        return QStringLiteral("begins the time of the factory reset, %1")
            .arg(Times::duration(KeyRules::factoryResetHold));
    case Rule::FactoryResetStops:
        return QStringLiteral("stops the time of the factory reset");
    case Rule::FactoryResetCompletes:
        return QStringLiteral("FactoryReset is spoken and announced to WwwApi");
    default:
        return {};
    }
}

/// Whether the effect marks a gesture. A row with the action of single keys does not.
bool EffectWords::isGesture(const Effect& effect) const
{
    if (effect.rule == Rule::FactoryResetCompletes) {
        return true;
    }
    return (effect.rule == Rule::Announces || effect.rule == Rule::RefusesState) &&
           m_lists.row(effect.row).eAction() != ls::KeyboardActionId::SingleKey;
}

/// The silence begins with the first action since all keys were forgotten; the last one is the nearest cause.
QString EffectWords::phraseOfSilence(const QVector<PlayedStep>& steps, int step) const
{
    for (int i = step; i >= 0; --i) {
        const PlayedStep& earlier = steps.at(i);
        for (int j = earlier.effects.size() - 1; j >= 0; --j) {
            const Effect& effect = earlier.effects.at(j);
            if (!isGesture(effect)) {
                continue;
            }
            const QString action =
                effect.row.index < 0 ? QStringLiteral("FactoryReset") : actionOf(effect.row);
            const QString kind = effect.rule == Rule::RefusesState && !announces(earlier, effect.row)
                                     ? QStringLiteral("refused")
                                     : QStringLiteral("announced");
            return QStringLiteral("%1 was %2 %3 before")
                .arg(action, kind, Times::duration(steps.at(step).at - earlier.at));
        }
    }
    return {};
}

/// A key that would open rows does not while another key is open.
QString EffectWords::closedDoor(const PlayedStep& step) const
{
    const bool isPress = step.input.kind == Input::Kind::Press;
    const Key open = isPress ? step.before.heldKey : step.before.firstKey;
    const bool isIgnored = step.before.state == KeyFacts::startup;
    if (open == Key::None || isIgnored || (!isPress && step.input.kind != Input::Kind::Release)) {
        return {};
    }
    const QString key = Alphabet::nameOf(step.input.key());
    const auto& rows = isPress ? m_lists.shortcuts : m_lists.combinations;
    const bool opens = std::any_of(rows.begin(), rows.end(), [&](const KeyEntry& row) {
        return row.isValid() && row.firstKey() == key;
    });
    const bool completes = step.has(isPress ? Rule::ShortcutCompletes : Rule::CombinationCompletes);
    if (!opens || completes || open == step.input.key()) {
        return {};
    }
    return (isPress ? QStringLiteral("opens no shortcuts: %1 is held and has opened some")
                    : QStringLiteral("opens no combinations: %1 has opened some before"))
        .arg(Alphabet::nameOf(open));
}

QString EffectWords::hiddenBy(const PlayedStep& step, const Effect& effect) const
{
    QStringList hidden;
    const QVector<RowId> rows = HiddenPairs::of(m_lists, step, effect);
    for (const RowId row : rows) {
        hidden.append(nameOf(row));
    }
    return hidden.isEmpty()
               ? QString()
               : placed(QStringLiteral("does not complete %1: %2 has three or more keys and hides it")
                            .arg(hidden.join(QStringLiteral(", ")), nameOf(effect.row)),
                        effect.row);
}

QString EffectWords::actionOf(RowId row) const
{
    return OutputWords::enumeration({m_lists.row(row).eAction()});
}

QString EffectWords::placed(const QString& phrase, RowId row) const
{
    return phrase + QStringLiteral("  [") + m_placeOf(row) + QLatin1Char(']');
}

} // namespace checker

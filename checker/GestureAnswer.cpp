// SPDX-License-Identifier: MIT
#include "checker/GestureAnswer.h"

#include "checker/EffectWords.h"
#include "checker/OutputWords.h"
#include "checker/RunWords.h"
#include "checker/ScriptPlayback.h"
#include "checker/WhatAnswer.h"
#include "keys/KeyRules.h"

#include <ls/Identifiers.h>

#include <algorithm>

using namespace model;
using std::chrono::milliseconds;

namespace checker {

namespace {

using Announcement = GestureAnswer::Announcement;

/// Times that have not decided about anything are mentioned from here on.
constexpr RunWords::Limits undecisive{KeyRules::singleKeyInterval, milliseconds(1000)};

/// Whether the time between two movements or that of a held key has decided what is done.
bool isDecidedByTime(const QVector<PlayedStep>& steps, milliseconds lastMovement)
{
    return std::any_of(steps.begin(), steps.end(), [&](const PlayedStep& step) {
        const bool isTooLate = step.at <= lastMovement && step.input.kind == Input::Kind::WindowEnd;
        return isTooLate || step.has(Rule::LongPressCompletes) || step.has(Rule::FactoryResetCompletes);
    });
}

milliseconds lastMovementOf(const QVector<PlayedStep>& steps)
{
    const auto last = std::find_if(steps.rbegin(), steps.rend(), [](const PlayedStep& step) {
        return step.origin != PlayedStep::Origin::Time;
    });
    return last == steps.rend() ? milliseconds::zero() : last->at;
}

/// "Hold Help for 2.3 s".
QString gestureOf(const QVector<PlayedStep>& steps)
{
    const milliseconds end = lastMovementOf(steps);
    QString gesture = RunWords::of(steps, end, isDecidedByTime(steps, end) ? RunWords::Limits() : undecisive);
    if (!gesture.isEmpty()) {
        gesture[0] = gesture.at(0).toUpper();
    }
    return gesture;
}

QVector<Announcement> announcementsOf(const KeyLists& lists, const PlayedStep& step)
{
    QVector<Announcement> announcements;
    for (const Effect& effect : step.effects) {
        Effects alone;
        alone.append(effect);
        const QVector<Output> outputs = Outputs::of(alone, lists, step.after.state);
        for (const Output& output : outputs) {
            if (output.kind == Output::Kind::Announce) {
                const QStringList states = effect.row.index < 0 ? QStringList() : lists.statesOf(effect.row);
                announcements.append({step.at, output.text, output.receiver, output.keys, states});
            }
        }
    }
    return announcements;
}

QString phraseOf(const Announcement& announcement, const QStringList& receivers)
{
    const bool isSingleKey =
        announcement.states.isEmpty() && announcement.action == ls::KeyboardActionId::SingleKey;
    const QString what = isSingleKey
                             ? QStringLiteral("the single key ") + OutputWords::enumeration(announcement.keys)
                             : OutputWords::enumeration({announcement.action});
    const QString phrase = what + QStringLiteral(", to ") + OutputWords::enumeration(receivers);
    return announcement.states.isEmpty()
               ? phrase
               : phrase + QStringLiteral(", only in ") + OutputWords::enumeration(announcement.states);
}

/// A phrase for each action; the receivers that it is announced to in turn are joined.
QStringList phrasesOf(const QVector<Announcement>& announcements)
{
    QStringList phrases;
    for (int i = 0; i < announcements.size();) {
        const Announcement& first = announcements.at(i);
        QStringList receivers;
        for (; i < announcements.size(); ++i) {
            const Announcement& next = announcements.at(i);
            const bool isSame = next.action == first.action && next.keys == first.keys &&
                                next.states == first.states && !receivers.contains(next.receiver);
            if (!isSame) {
                break;
            }
            receivers.append(next.receiver);
        }
        phrases.append(phraseOf(first, receivers));
    }
    return phrases;
}

QStringList refusalsOf(const EffectWords& words, const PlayedStep& step)
{
    QStringList refusals;
    for (const Effect& effect : step.effects) {
        refusals.append(words.refusal(step, effect));
    }
    refusals.removeAll(QString());
    return refusals;
}

/// What is spoken, if nothing is announced.
QStringList speechOf(const QVector<PlayedStep>& steps)
{
    QStringList phrases;
    for (const PlayedStep& step : steps) {
        for (const Output& output : step.outputs) {
            if (output.kind == Output::Kind::Speak) {
                phrases.append(OutputWords::of(output));
            }
        }
    }
    return phrases.isEmpty() ? QStringList(WhatAnswer::nothing())
                             : phrases + QStringList(QStringLiteral("nothing is announced"));
}

/// Equal phrases are counted: "PowerOff, to PrintManager, 2 times".
QString counted(const QStringList& phrases)
{
    QStringList different = phrases;
    different.removeDuplicates();
    for (QString& phrase : different) {
        const int times = phrases.count(phrase);
        phrase += times > 1 ? QStringLiteral(", %1 times").arg(times) : QString();
    }
    return different.join(QStringLiteral("; "));
}

/// Whether a later key is handled as if there had been none. A window that runs on its own does not matter.
bool isForgotten(const Situation& situation)
{
    Situation forgotten = Situation::initial(situation.state);
    forgotten.testMode = situation.testMode;
    forgotten.windowRuns = situation.windowRuns;
    return situation == forgotten;
}

milliseconds forgottenAt(const QVector<PlayedStep>& steps)
{
    milliseconds at{0};
    for (int i = steps.size() - 1; i >= 0; --i) {
        if (!isForgotten(steps.at(i).after)) {
            return i + 1 < steps.size() ? steps.at(i + 1).at : steps.at(i).at;
        }
        at = steps.at(i).at;
        if (steps.at(i).origin != PlayedStep::Origin::Time) {
            break;
        }
    }
    return at;
}

} // namespace

GestureAnswer GestureAnswer::of(const KeyLists& lists, const KeyScript& script)
{
    const KeyModel keyModel(lists);
    ScriptPlayback playback(keyModel, script);
    playback.settle();
    const QVector<PlayedStep>& steps = playback.playback().steps();
    const EffectWords words(lists, {});
    GestureAnswer answer;
    QStringList phrases;
    for (const PlayedStep& step : steps) {
        const QVector<Announcement> announcements = announcementsOf(lists, step);
        phrases += phrasesOf(announcements) + refusalsOf(words, step);
        answer.announcements += announcements;
    }
    phrases = phrases.isEmpty() ? speechOf(steps) : phrases;
    const QString gesture = gestureOf(steps);
    answer.sentence = gesture + (gesture.isEmpty() ? QString() : QStringLiteral(": ")) + counted(phrases) +
                      QLatin1Char('.');
    answer.forgottenAfter = std::max(forgottenAt(steps) - script.end, milliseconds::zero());
    return answer;
}

} // namespace checker

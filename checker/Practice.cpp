// SPDX-License-Identifier: MIT
#include "checker/Practice.h"

#include "checker/EffectWords.h"
#include "checker/GestureAnswer.h"
#include "checker/ScriptPlayback.h"

#include <algorithm>

using std::chrono::milliseconds;

namespace checker {

namespace {

/// In place of longer ones; shorter than the time after which a key repeats.
constexpr milliseconds maxOwnPause{100};

bool isTimed(const KeyCardEntry& task)
{
    return task.kind == KeyCardKind::Long || task.kind == KeyCardKind::Hold;
}

bool isRelease(const ScriptStep& step, const ScriptStep& press)
{
    return press.kind == ScriptStep::Kind::Press && step.kind == ScriptStep::Kind::Release &&
           step.text == press.text && step.keyboard == press.keyboard;
}

bool isRight(const GestureAnswer& answer, const KeyCardEntry& task)
{
    return std::all_of(task.receivers.begin(), task.receivers.end(), [&](const QString& receiver) {
        return std::any_of(answer.announcements.begin(), answer.announcements.end(),
                           [&](const GestureAnswer::Announcement& announcement) {
                               return announcement.action == task.action &&
                                      announcement.receiver == receiver &&
                                      (task.kind != KeyCardKind::Single || announcement.keys == task.keys);
                           });
    });
}

QStringList missed(const model::KeyLists& lists, const KeyScript& script, const QString& action)
{
    const model::KeyModel keyModel(lists);
    const ScriptPlayback playback(keyModel, script);
    const QVector<model::PlayedStep>& steps = playback.playback().steps();
    const EffectWords words(lists, {});
    QStringList phrases;
    for (int step = 0; step < steps.size(); ++step) {
        phrases += words.missed(steps, step, action);
    }
    phrases.removeDuplicates();
    return phrases;
}

} // namespace

Practice::Judgement Practice::judge(const model::KeyLists& lists, const KeyScript& script,
                                    const KeyCardEntry& task)
{
    const GestureAnswer answer = GestureAnswer::of(lists, script);
    Judgement judgement{isRight(answer, task), answer.sentence, answer.forgottenAfter};
    if (!judgement.isRight) {
        const QStringList reasons = missed(lists, script, task.action);
        for (const QString& reason : reasons) {
            judgement.text += QLatin1Char(' ') + reason + QLatin1Char('.');
        }
    }
    return judgement;
}

KeyScript Practice::atOwnPace(KeyScript script, const KeyCardEntry& task)
{
    const KeyScript real = script;
    const milliseconds longEnough = milliseconds(task.holdMs) + maxOwnPause;
    milliseconds now{0};
    for (int i = 0; i < script.steps.size(); ++i) {
        const milliseconds pause =
            i > 0 ? real.steps.at(i).at - real.steps.at(i - 1).at : milliseconds::zero();
        const bool isHold = i > 0 && isTimed(task) && isRelease(real.steps.at(i), real.steps.at(i - 1));
        now += std::min(pause, isHold ? longEnough : maxOwnPause);
        script.steps[i].at = now;
    }
    script.end = now;
    return script;
}

bool Practice::isComplete(const KeyScript& script, const KeyCardEntry& task)
{
    const auto count = [&script](ScriptStep::Kind kind) {
        return std::count_if(script.steps.begin(), script.steps.end(),
                             [kind](const ScriptStep& step) { return step.kind == kind; });
    };
    const auto presses = count(ScriptStep::Kind::Press);
    return presses >= task.keys.size() && count(ScriptStep::Kind::Release) >= presses;
}

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/WhatAnswer.h"

#include "checker/EffectWords.h"
#include "checker/OutputWords.h"
#include "checker/ScriptPlayback.h"
#include "checker/Times.h"

#include <algorithm>

namespace checker {

namespace {

QStringList phrasesOf(const EffectWords& words, const model::PlayedStep& step)
{
    QStringList phrases;
    for (const model::Output& output : step.outputs) {
        if (output.kind != model::Output::Kind::Log) {
            phrases.append(OutputWords::of(output));
        }
    }
    for (const model::Effect& effect : step.effects) {
        const QString refusal = words.refusal(step, effect);
        if (!refusal.isEmpty()) {
            phrases.append(refusal);
        }
    }
    return phrases;
}

} // namespace

QString WhatAnswer::nothing()
{
    return QStringLiteral("Nothing is spoken and nothing is announced");
}

WhatAnswer WhatAnswer::of(const model::KeyLists& lists, const KeyScript& script)
{
    const model::KeyModel keyModel(lists);
    ScriptPlayback playback(keyModel, script);
    WhatAnswer answer;
    answer.goesOn = !playback.settle();
    const EffectWords words(lists, {});
    for (const model::PlayedStep& step : playback.playback().steps()) {
        const QStringList phrases = phrasesOf(words, step);
        for (const QString& phrase : phrases) {
            answer.lines.append(Times::sinceStart(step.at) + QStringLiteral("  ") + phrase);
        }
        answer.isPerceived = answer.isPerceived ||
                             std::any_of(step.outputs.begin(), step.outputs.end(), OutputWords::isPerceived);
    }
    return answer;
}

} // namespace checker

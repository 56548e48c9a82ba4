// SPDX-License-Identifier: MIT
#include "workbench/web/KeyAnswers.h"

#include "checker/GestureAnswer.h"
#include "checker/Practice.h"
#include "checker/WhatAnswer.h"
#include "checker/WhyAnswer.h"

#include <QJsonArray>

#include <algorithm>

namespace {

using checker::ListSources;

/// Rows and steps that the search for causes plays: some seconds of it.
constexpr int maxPlayed = 500'000;

bool isOrvane(const KeyAnswers::Device& device)
{
    return device.model == QLatin1String("Orvane");
}

QJsonObject toJson(const checker::GestureAnswer::Announcement& announcement)
{
    return {{QStringLiteral("at"), qint64(announcement.at.count())},
            {QStringLiteral("action"), announcement.action},
            {QStringLiteral("receiver"), announcement.receiver},
            {QStringLiteral("keys"), QJsonArray::fromStringList(announcement.keys)},
            {QStringLiteral("states"), QJsonArray::fromStringList(announcement.states)}};
}

} // namespace

HttpAnswer KeyAnswers::what(const Device& device, const KeyQuestion& question)
{
    const model::KeyLists lists = model::KeyLists::read(device.keyLists, isOrvane(device));
    const auto gesture = checker::GestureAnswer::of(lists, question.script);
    QJsonArray announcements;
    for (const auto& announcement : gesture.announcements) {
        announcements.append(toJson(announcement));
    }
    const auto all = checker::WhatAnswer::of(lists, question.script);
    return HttpAnswer::json({{QStringLiteral("text"), gesture.sentence},
                             {QStringLiteral("announcements"), announcements},
                             {QStringLiteral("lines"), QJsonArray::fromStringList(all.lines)},
                             {QStringLiteral("forgottenAfter"), qint64(gesture.forgottenAfter.count())}});
}

HttpAnswer KeyAnswers::why(const Device& device, const KeyQuestion& question)
{
    const ListSources sources = ListSources::of(device.keyLists);
    const model::KeyLists lists = sources.lists(isOrvane(device));
    const int played = lists.ids().size() + question.script.steps.size();
    const QStringList lines =
        checker::WhyAnswer::of(lists, question.script, checker::PlacesOf::rowsIn(sources), question.at,
                               maxPlayed / std::max(1, played));
    return HttpAnswer::json({{QStringLiteral("lines"), QJsonArray::fromStringList(lines)}});
}

HttpAnswer KeyAnswers::judgement(const Device& device, const KeyQuestion& question)
{
    using namespace checker;
    if (!question.task) {
        return HttpAnswer::error(HttpStatus::badRequest, QStringLiteral("The question has no task."));
    }
    const model::KeyLists lists = model::KeyLists::read(device.keyLists, isOrvane(device));
    const auto judgement = Practice::judge(lists, question.script, *question.task);
    QJsonObject answer{{QStringLiteral("right"), judgement.isRight},
                       {QStringLiteral("text"), judgement.text}};
    if (!question.isAtOwnPace) {
        answer.insert(QStringLiteral("forgottenAfter"), qint64(judgement.forgottenAfter.count()));
    } else if (Practice::isComplete(question.script, *question.task)) {
        answer.insert(QStringLiteral("forgottenAfter"), 0);
    }
    return HttpAnswer::json(answer);
}

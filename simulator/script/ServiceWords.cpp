// SPDX-License-Identifier: MIT
#include "simulator/script/ServiceWords.h"

#include <QMap>

using Condition = ServiceChange::Condition;

namespace {

const QMap<QString, Condition>& conditions()
{
    static const QMap<QString, Condition> words{{QStringLiteral("start"), Condition::Running},
                                                {QStringLiteral("silent"), Condition::Silent},
                                                {QStringLiteral("stop"), Condition::Stopped}};
    return words;
}

} // namespace

namespace ServiceWords {

Parsed parse(const QStringList& words)
{
    const QString service = words.value(0);
    const bool isKnown = service == ServiceChange::stateHandler || service == ServiceChange::speechDaemon;
    if (words.size() != 2 || !isKnown || !conditions().contains(words.at(1))) {
        return {{}, QStringLiteral("Write it as: service state-handler|speechd stop|silent|start")};
    }
    return {{service, conditions().value(words.at(1))}, {}};
}

QStringList wordsOf(const ServiceChange& change)
{
    return {change.service, conditions().key(change.condition)};
}

} // namespace ServiceWords

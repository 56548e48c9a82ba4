// SPDX-License-Identifier: MIT
#include "tests/whole/random/Commands.h"
#include "tests/whole/random/Invariants.h"

#include <ls/MessageKeys.h>
#include <translation/Sid.h>

#include <QMetaEnum>

#include <algorithm>

using namespace ls;

namespace {

const QString spokenName = QStringLiteral("speak EmbosserCore %1");
const QString cancellation = QStringLiteral("cancel");

/// The sentence of a key's name; 0 for a key without one.
int sentenceOf(const QString& key)
{
    static const QMetaEnum sentences = QMetaEnum::fromType<libtranslation::Sid::EmbosserCore>();
    const int sentence = sentences.keyToValue(("Key" + key).toLatin1().constData());
    return qMax(sentence, 0);
}

/// The spoken name of a lone key.
QString loneName(const Facts& facts, const QString& key)
{
    const bool isOther = key == KeyId::Function && facts.script().model == QLatin1String("Orvane");
    return spokenName.arg(isOther ? 30 : sentenceOf(key));
}

QStringList spokenIn(const Facts& facts, int step)
{
    QStringList texts;
    const QVector<PlayEvent> events = facts.eventsIn(step);
    for (const PlayEvent& event : events) {
        if (event.text.startsWith(QLatin1String("speak ")) || event.text == cancellation) {
            texts.append(event.text);
        }
    }
    return texts;
}

/// The number of combinations completed in a step, announced or not.
int combinationsIn(const Facts& facts, int step)
{
    const QVector<PlayEvent> events = facts.eventsIn(step);
    return static_cast<int>(std::count_if(events.cbegin(), events.cend(), [](const PlayEvent& event) {
        return Facts::isGesture(event) || Facts::isUndefinedReceiver(event);
    }));
}

/// The speech of a release for its key alone, after that of completed gestures.
QVector<QStringList> loneSpeech(const Facts& facts, const Release& release)
{
    const QString key = release.input.key;
    const QString name = loneName(facts, key);
    if (release.input.state != StateId::Idle) {
        const bool isSpoken = (release.inTest || key == KeyId::Unknown) && sentenceOf(key) != 0;
        return {isSpoken ? QStringList{cancellation, name} : QStringList()};
    }
    const bool isSilent = key == KeyId::Function && facts.script().model != QLatin1String("Orvane");
    if (release.isSentAtOnce || isSilent) {
        return {QStringList()};
    }
    switch (facts.gestureSeenBefore(release.input.place)) {
    case Answer::Yes:
        return {QStringList()};
    case Answer::No:
        return {{name}};
    case Answer::Maybe:
        break;
    }
    return {{name}, QStringList()};
}

QString checkRelease(const Facts& facts, int step, const Release& release)
{
    const QStringList spoken = spokenIn(facts, step);
    const QString combined = spokenName.arg(sentenceOf(release.input.key));
    const QVector<QStringList> lone = loneSpeech(facts, release);
    const auto isRight = [&](const QStringList& end) {
        QStringList rest = spoken.mid(0, spoken.size() - end.size());
        const bool hasEnd = spoken.size() >= end.size() && spoken.mid(rest.size()) == end;
        rest.removeAll(cancellation);
        return hasEnd && rest.size() == combinationsIn(facts, step) && rest.count(combined) == rest.size();
    };
    return std::any_of(lone.cbegin(), lone.cend(), isRight)
               ? QString()
               : QStringLiteral("step %1 speaks \"%2\"").arg(step).arg(spoken.join(QStringLiteral(", ")));
}

QString checkOther(const Facts& facts, int step)
{
    QStringList spoken = spokenIn(facts, step);
    const auto command = Commands::of(facts.script().steps.at(step));
    const bool combines = command && Commands::succeeds(*command, KeyboardHandlerCmdId::SimulateModifier);
    const KeyInput* input = facts.inputOf(step);
    if (input && !input->isSeen()) {
        return {};
    }
    spoken.removeAll(cancellation);
    const int due = combines ? combinationsIn(facts, step) : 0;
    QStringList names;
    const QStringList keys = combines ? command->value(keysListKey).toStringList() : QStringList();
    std::transform(keys.cbegin(), keys.cend(), std::back_inserter(names),
                   [](const QString& key) { return spokenName.arg(sentenceOf(key)); });
    const bool areNames = std::all_of(spoken.cbegin(), spoken.cend(),
                                      [&](const QString& text) { return names.contains(text); });
    return spoken.size() == due && areNames
               ? QString()
               : QStringLiteral("step %1 speaks \"%2\"").arg(step).arg(spoken.join(QStringLiteral(", ")));
}

/// Only rows of three or more keys cancel speech before they speak.
bool hasLongerRow(const Facts& facts)
{
    const QVector<KeyRow> rows = facts.rows(KeyRow::Kind::Modifier);
    return std::any_of(rows.cbegin(), rows.cend(), [](const KeyRow& row) { return row.keys.size() > 2; });
}

bool mayCancel(const Facts& facts, int step)
{
    const KeyInput* input = facts.inputOf(step);
    const Release* release = facts.releaseOf(step);
    const bool isRefusal = input && !input->isSeen();
    const bool isTest = release && release->inTest && release->input.state != StateId::Idle;
    const bool combines = combinationsIn(facts, step) > 0 && hasLongerRow(facts);
    return isRefusal || isTest || combines;
}

} // namespace

namespace invariants {

QString releasesSpeakTheirKey(const Facts& facts)
{
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        const Release* release = facts.releaseOf(i);
        const QString fault = release ? checkRelease(facts, i, *release) : checkOther(facts, i);
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

QString cancellationsHaveASentence(const Facts& facts)
{
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        const QStringList spoken = spokenIn(facts, i);
        for (int j = 0; j < spoken.size(); ++j) {
            const bool isFollowed = spoken.value(j + 1).startsWith(QLatin1String("speak "));
            if (spoken.at(j) == cancellation && (!isFollowed || !mayCancel(facts, i))) {
                return QStringLiteral("step %1 cancels for \"%2\"").arg(i).arg(spoken.value(j + 1));
            }
        }
    }
    return {};
}

} // namespace invariants

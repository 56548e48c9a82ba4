// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"

#include <translation/Sid.h>

#include <QMetaEnum>
#include <QRegularExpression>

using namespace std::chrono_literals;

namespace {

bool isSpeech(const PlayEvent& event)
{
    return event.text.startsWith(QLatin1String("speak ")) || event.text == QLatin1String("cancel");
}

/// Whether `text` speaks the name of a key, or that of a key without one.
bool isSpokenKey(const QString& text)
{
    static const QMetaEnum names = QMetaEnum::fromType<libtranslation::Sid::EmbosserCore>();
    const QString number = text.section(QLatin1Char(' '), 2);
    return text.startsWith(QLatin1String("speak EmbosserCore ")) &&
           (number == QLatin1String("0") || names.valueToKey(number.toInt()));
}

bool isKnown(const QString& text)
{
    static const QRegularExpression shapes(QStringLiteral("^(cancel"
                                                          "|announce \\w+ \\w+ (-|\\w+) \\w+( \\w+)?"
                                                          "|speak EmbosserError 69"
                                                          "|speak EmbosserMenu 487"
                                                          "|answer errorId=\\w+ (.* )?resultId=\\w+( .*)?"
                                                          "|log.*)$"));
    return isSpokenKey(text) || shapes.match(text).hasMatch();
}

} // namespace

namespace invariants {

QString allEventsAreKnown(const Facts& facts)
{
    for (const PlayEvent& event : facts.play().events) {
        if (!isKnown(event.text)) {
            return described(event);
        }
    }
    return {};
}

QString eventsAreInOrder(const Facts& facts)
{
    auto last = 0ms;
    for (const PlayEvent& event : facts.play().events) {
        const bool inStep = event.place.isInStep();
        const auto due = inStep ? facts.script().steps.at(event.place.steps - 1).at : event.at;
        if (event.at < last || event.at != due || event.at > facts.script().end) {
            return described(event);
        }
        last = event.at;
    }
    return {};
}

QString timersCauseOnlyKnownActions(const Facts& facts)
{
    for (const PlayEvent& event : facts.play().events) {
        const bool isAllowed = event.text.startsWith(QLatin1String("announce ")) ||
                               event.text == QLatin1String("speak EmbosserMenu 487") ||
                               Facts::isRefusal(event) || Facts::isUndefinedReceiver(event);
        if (!event.place.isInStep() && !isAllowed) {
            return described(event);
        }
    }
    for (const Announcement& announcement : facts.announcements()) {
        if (!announcement.place.isInStep() && announcement.keys.size() != 1) {
            return QStringLiteral("a gesture of two keys at %1 ms, where no step is")
                .arg(announcement.at.count());
        }
    }
    return {};
}

QString startupAnswersEachPress(const Facts& facts)
{
    static const QStringList answer{QStringLiteral("cancel"), QStringLiteral("speak EmbosserError 69")};
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        QStringList spoken;
        bool isRefused = false;
        const QVector<PlayEvent> events = facts.eventsIn(i);
        for (const PlayEvent& event : events) {
            isRefused = isRefused || event.text == answer.last();
            if (isSpeech(event)) {
                spoken.append(event.text);
            }
        }
        const KeyInput* input = facts.inputOf(i);
        const bool isInStartup = input && !input->isSeen();
        const QStringList due = isInStartup && input->value == 1 ? answer : QStringList();
        if ((isInStartup || isRefused) && spoken != due) {
            return QStringLiteral("step %1 is answered by \"%2\"")
                .arg(i)
                .arg(spoken.join(QStringLiteral(", ")));
        }
    }
    return {};
}

QString startupAnnouncesNoKey(const Facts& facts)
{
    for (const Announcement& announcement : facts.announcements()) {
        if (facts.stateAt(announcement.place) != ls::StateId::Startup) {
            continue;
        }
        const bool isInKeyStep = announcement.place.isInStep() && facts.inputOf(announcement.place.steps - 1);
        if (isInKeyStep || Facts::isSingleKey(announcement)) {
            return QStringLiteral("%1 at %2 ms").arg(announcement.action).arg(announcement.at.count());
        }
    }
    return {};
}

} // namespace invariants

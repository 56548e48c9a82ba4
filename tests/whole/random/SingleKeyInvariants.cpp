// SPDX-License-Identifier: MIT
#include "tests/whole/random/Invariants.h"

#include <algorithm>

using namespace ls;

namespace {

QStringList receiversOf(const QString& state, const QString& key)
{
    static const QMap<QString, QString> ofState{{StateId::Print, ServiceId::PrintManager},
                                                {StateId::PrintOff, ServiceId::PrintManager},
                                                {StateId::Error, ServiceId::ErrorHandler},
                                                {StateId::Update, ServiceId::UpdateManager}};
    static const QStringList machineKeys{KeyId::Feed, KeyId::Function, KeyId::On, KeyId::Off, KeyId::Ten};
    if (ofState.contains(state)) {
        return {ofState.value(state)};
    }
    return machineKeys.contains(key) ? QStringList{ServiceId::PrintManager, ServiceId::UserMenu}
                                     : QStringList{ServiceId::UserMenu};
}

/// "RECEIVER KEY" of each single key among `announcements`.
QStringList singleKeys(const QVector<Announcement>& announcements)
{
    QStringList keys;
    for (const Announcement& announcement : announcements) {
        if (Facts::isSingleKey(announcement)) {
            keys.append(announcement.receiver + QLatin1Char(' ') + announcement.keys.join(QLatin1Char(' ')));
        }
    }
    return keys;
}

QStringList dueKeys(const QString& state, const QString& key)
{
    QStringList due;
    const QStringList receivers = receiversOf(state, key);
    for (const QString& receiver : receivers) {
        due.append(receiver + QLatin1Char(' ') + key);
    }
    return due;
}

/// Compares the single keys of each step with those due immediately; `inIdle` selects the steps.
QString checkSteps(const Facts& facts, bool inIdle)
{
    for (int i = 0; i < facts.script().steps.size(); ++i) {
        const QString state = facts.stateAt(Place::ofStep(i));
        if ((state == StateId::Idle) != inIdle) {
            continue;
        }
        const Release* release = facts.releaseOf(i);
        const QStringList due =
            release && release->isSentAtOnce ? dueKeys(state, release->sentKey) : QStringList();
        const QStringList sent = singleKeys(facts.announcedIn(i));
        if (sent != due) {
            return QStringLiteral("step %1 sends \"%2\", not \"%3\"")
                .arg(i)
                .arg(sent.join(QStringLiteral(", ")), due.join(QStringLiteral(", ")));
        }
    }
    return {};
}

QVector<Announcement> announcedAt(const Facts& facts, const Place& place)
{
    QVector<Announcement> some;
    std::copy_if(facts.announcements().cbegin(), facts.announcements().cend(), std::back_inserter(some),
                 [&place](const Announcement& announcement) { return announcement.place == place; });
    return some;
}

QString checkWindow(const Facts& facts, const Release& release)
{
    const Place end = *release.windowEnd;
    const bool isPending = !release.isSentAtOnce && release.input.key != KeyId::Unknown;
    const bool mayCome = isPending && facts.stateAt(end) == StateId::Idle;
    const Answer gesture = mayCome ? facts.gestureSeenBefore(end) : Answer::Yes;
    const QStringList due =
        gesture == Answer::Yes ? QStringList() : dueKeys(StateId::Idle, release.input.key);
    const QStringList sent = singleKeys(announcedAt(facts, end));
    if (sent == due || (gesture == Answer::Maybe && sent.isEmpty())) {
        return {};
    }
    return QStringLiteral("at %1 ms \"%2\" is sent, not \"%3\"")
        .arg(end.timer.count())
        .arg(sent.join(QStringLiteral(", ")), due.join(QStringLiteral(", ")));
}

} // namespace

namespace invariants {

QString busyStatesSendEachReleaseAtOnce(const Facts& facts)
{
    return checkSteps(facts, false);
}

QString idleSendsOnlyMenuAtOnce(const Facts& facts)
{
    return checkSteps(facts, true);
}

QString loneKeysAreSentAtTheEndOfTheWindow(const Facts& facts)
{
    QVector<Place> ends;
    for (const Release& release : facts.releases()) {
        const QString fault = release.windowEnd ? checkWindow(facts, release) : QString();
        if (!fault.isEmpty()) {
            return fault;
        }
        ends.append(release.windowEnd.value_or(release.input.place));
    }
    for (const Announcement& announcement : facts.announcements()) {
        if (Facts::isSingleKey(announcement) && !announcement.place.isInStep() &&
            !ends.contains(announcement.place)) {
            return QStringLiteral("a single key at %1 ms, where no window ends").arg(announcement.at.count());
        }
    }
    return {};
}

} // namespace invariants

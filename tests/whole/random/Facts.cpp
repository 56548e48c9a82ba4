// SPDX-License-Identifier: MIT
#include "tests/whole/random/Facts.h"

#include "tests/whole/random/Commands.h"

#include <ls/MessageKeys.h>

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr auto window = 1500ms;
const QString refusalText = QStringLiteral("log KeyboardManager::onEvent WARN: Expected state is:");
const QString undefinedText = QStringLiteral("log KeyboardManager::onEvent WARN: Invalid event");

QString unquoted(const QString& word)
{
    return word == QLatin1String("-") ? QString() : word;
}

/// The keys that the command or the key event of `step` passes to a recogniser.
QStringList fedKeys(const ScriptStep& step, const KeyInput* input, const QString& commandName, int value)
{
    const auto command = Commands::of(step);
    if (command && Commands::succeeds(*command, commandName)) {
        return command->value(ls::keysListKey).toStringList();
    }
    return input && input->isSeen() && input->value == value ? QStringList(input->key) : QStringList();
}

} // namespace

Facts::Facts(const Play& play)
    : m_play(play), m_states(KeyInputs::statesOf(play.script)), m_inputs(KeyInputs::of(play.script))
{
    collectAnnouncements();
    sortIntoSteps();
    collectReleases();
    endWindows();
    m_fedCombinations = feed(KeyRow::Kind::Modifier, ls::KeyboardHandlerCmdId::SimulateModifier, 0);
    m_fedShortcuts = feed(KeyRow::Kind::Shortcut, ls::KeyboardHandlerCmdId::SimulateShortcut, 1);
}

QVector<KeyRow> Facts::rows(KeyRow::Kind kind) const
{
    QVector<KeyRow> rows;
    for (const KeyRow& row : script().rows) {
        if (row.kind == kind && !row.keys.isEmpty()) {
            rows.append(row);
        }
    }
    return rows;
}

const KeyInput* Facts::inputOf(int step) const
{
    const auto isEarlier = [](const KeyInput& input, const Place& place) { return input.place < place; };
    const Place place = Place::ofStep(step);
    const auto input = std::lower_bound(m_inputs.cbegin(), m_inputs.cend(), place, isEarlier);
    return input != m_inputs.cend() && input->place == place ? &*input : nullptr;
}

const Release* Facts::releaseOf(int step) const
{
    const auto isEarlier = [](const Release& release, const Place& place) {
        return release.input.place < place;
    };
    const Place place = Place::ofStep(step);
    const auto release = std::lower_bound(m_releases.cbegin(), m_releases.cend(), place, isEarlier);
    return release != m_releases.cend() && release->input.place == place ? &*release : nullptr;
}

QVector<Announcement> Facts::announcedIn(int step) const
{
    return m_announcedInSteps.value(step);
}

QVector<PlayEvent> Facts::eventsIn(int step) const
{
    return m_eventsInSteps.value(step);
}

Answer Facts::gestureSeenBefore(const Place& place) const
{
    Place begin{0, -2ms};
    for (const Place& reset : m_resets) {
        begin = reset < place ? std::max(begin, reset) : begin;
    }
    Answer answer = Answer::No;
    for (const PlayEvent& event : m_play.events) {
        if (!isGesture(event) || event.place < begin || place < event.place) {
            continue;
        }
        const bool isTied = !event.place.isInStep() && (event.place == begin || event.place == place);
        if (isTied) {
            answer = Answer::Maybe;
        } else if (!(event.place == begin)) {
            return Answer::Yes;
        }
    }
    return answer;
}

bool Facts::isSingleKey(const Announcement& announcement)
{
    return announcement.action == ls::KeyboardActionId::SingleKey;
}

bool Facts::isGesture(const PlayEvent& event)
{
    const bool isAnnounced = event.text.startsWith(QLatin1String("announce "));
    return isRefusal(event) || (isAnnounced && !event.text.startsWith(QLatin1String("announce SingleKey ")));
}

bool Facts::isRefusal(const PlayEvent& event)
{
    return event.text.startsWith(refusalText);
}

bool Facts::isUndefinedReceiver(const PlayEvent& event)
{
    return event.text.startsWith(undefinedText);
}

void Facts::collectAnnouncements()
{
    for (const PlayEvent& event : qAsConst(m_play.events)) {
        const QStringList words = event.text.split(QLatin1Char(' '));
        if (words.first() == QLatin1String("announce")) {
            m_announcements.append({unquoted(words.value(1)), unquoted(words.value(2)),
                                    unquoted(words.value(3)), words.mid(4), event.at, event.place});
        }
    }
}

void Facts::sortIntoSteps()
{
    for (const PlayEvent& event : qAsConst(m_play.events)) {
        if (event.place.isInStep()) {
            m_eventsInSteps[event.place.steps - 1].append(event);
        }
    }
    for (const Announcement& announcement : qAsConst(m_announcements)) {
        if (announcement.place.isInStep()) {
            m_announcedInSteps[announcement.place.steps - 1].append(announcement);
        }
    }
}

void Facts::collectReleases()
{
    bool inTest = false;
    for (int i = 0; i < script().steps.size(); ++i) {
        const auto command = Commands::of(script().steps.at(i));
        inTest = inTest || (command && Commands::succeeds(*command, ls::KeyboardHandlerCmdId::StartTestMode));
        const KeyInput* input = inputOf(i);
        if (!input || !input->isRelease()) {
            continue;
        }
        Release release{*input, inTest, false, input->key, std::nullopt};
        if (input->state == ls::StateId::Idle) {
            release.isSentAtOnce =
                input->key == ls::KeyId::Menu && pendingKeyBefore(*input) != ls::KeyId::Help;
        } else if (inTest) {
            release.isSentAtOnce = input->key == ls::KeyId::Ten;
            release.sentKey = ls::KeyId::Ok;
            inTest = !release.isSentAtOnce;
        } else {
            release.isSentAtOnce = input->key != ls::KeyId::Unknown;
        }
        m_releases.append(release);
    }
}

void Facts::endWindows()
{
    for (int i = 0; i < m_releases.size(); ++i) {
        Release& release = m_releases[i];
        const auto end = release.input.at + window;
        const bool isLast = i + 1 == m_releases.size();
        if (end <= script().end && (isLast || end <= m_releases.at(i + 1).input.at)) {
            release.windowEnd = KeyInputs::timerPlace(script(), end);
            m_resets.append(*release.windowEnd);
        }
        if (release.isSentAtOnce) {
            m_resets.append(release.input.place);
        }
    }
    std::sort(m_resets.begin(), m_resets.end());
}

QString Facts::pendingKeyBefore(const KeyInput& release) const
{
    if (m_releases.isEmpty()) {
        return {};
    }
    const Release& previous = m_releases.last();
    const bool isPending = !previous.isSentAtOnce && release.at < previous.input.at + window;
    return isPending ? previous.input.key : QString();
}

QVector<FedKey> Facts::feed(KeyRow::Kind kind, const QString& command, int value) const
{
    const QVector<KeyRow> known = rows(kind);
    const auto opens = [&known](const QString& key) {
        return key != ls::KeyId::Unknown &&
               std::any_of(known.cbegin(), known.cend(),
                           [&key](const KeyRow& row) { return row.keys.first() == key; });
    };
    QVector<FedKey> all;
    QString opening;
    QStringList since;
    Place last{0, -2ms};
    for (int i = 0; i < script().steps.size(); ++i) {
        const Place place = Place::ofStep(i);
        const KeyInput* input = inputOf(i);
        const auto reset = std::lower_bound(m_resets.cbegin(), m_resets.cend(), last);
        if (reset != m_resets.cend() && *reset < place) {
            opening.clear();
            since.clear();
        }
        last = place;
        const QStringList keys = fedKeys(script().steps.at(i), input, command, value);
        for (const QString& key : keys) {
            since.append(key);
            all.append({i, key, opening, since});
            opening = opening.isEmpty() && opens(key) ? key : opening;
        }
        // Any release ends a shortcut, but not a combination.
        if (kind == KeyRow::Kind::Shortcut && input && input->isRelease()) {
            opening.clear();
        }
    }
    return all;
}

// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/KeyInputs.h"

#include <QHash>

#include <optional>

/// An observed notification, parsed.
struct Announcement
{
    QString action;
    QString receiver;
    QString sender;
    QStringList keys;
    std::chrono::milliseconds at{0};
    Place place;
};

/// A key release that reaches the daemon, and its expected effects.
struct Release
{
    KeyInput input;
    /// Whether the keyboard test is running.
    bool inTest = false;
    /// Whether this release is immediately a single key, and the key that is sent.
    bool isSentAtOnce = false;
    QString sentKey;
    /// The end of the window after this release; not set if another release or the script's end is earlier.
    std::optional<Place> windowEnd;
};

/// A key that is passed to the recogniser of combinations or shortcuts.
struct FedKey
{
    int step = 0;
    QString key;
    /// The opening key of the current gesture; empty if there is none.
    QString opening;
    /// All keys since the last reset, including this one.
    QStringList since;
};

enum class Answer { No, Yes, Maybe };

/// The inputs of a script and the observations of its play, prepared for invariants. Independent of the
/// daemon's rules for rows.
class Facts
{
public:
    explicit Facts(const Play& play);

    const Play& play() const { return m_play; }
    const KeyScript& script() const { return m_play.script; }
    const QVector<KeyInput>& inputs() const { return m_inputs; }
    const QVector<Announcement>& announcements() const { return m_announcements; }
    const QVector<Release>& releases() const { return m_releases; }
    const QVector<FedKey>& fedCombinations() const { return m_fedCombinations; }
    const QVector<FedKey>& fedShortcuts() const { return m_fedShortcuts; }
    /// The times at which pending keys are cleared: at the end of windows and when a key is sent immediately.
    const QVector<Place>& resets() const { return m_resets; }

    QString stateAt(const Place& place) const { return m_states.at(place.steps); }
    QVector<KeyRow> rows(KeyRow::Kind kind) const;
    const KeyInput* inputOf(int step) const;
    const Release* releaseOf(int step) const;
    QVector<Announcement> announcedIn(int step) const;
    QVector<PlayEvent> eventsIn(int step) const;

    /// Whether a gesture or the factory reset was recognised since the last reset before `place`; `Maybe` if
    /// one occurred at the same moment as either end.
    Answer gestureSeenBefore(const Place& place) const;

    static bool isSingleKey(const Announcement& announcement);
    /// Whether `event` is a recognised action, announced or dropped because of the state.
    static bool isGesture(const PlayEvent& event);
    static bool isRefusal(const PlayEvent& event);
    static bool isUndefinedReceiver(const PlayEvent& event);

private:
    void collectAnnouncements();
    void sortIntoSteps();
    void collectReleases();
    void endWindows();
    QString pendingKeyBefore(const KeyInput& release) const;
    QVector<FedKey> feed(KeyRow::Kind kind, const QString& command, int value) const;

    Play m_play;
    QStringList m_states;
    QVector<KeyInput> m_inputs;
    QVector<Announcement> m_announcements;
    QHash<int, QVector<Announcement>> m_announcedInSteps;
    QHash<int, QVector<PlayEvent>> m_eventsInSteps;
    QVector<Release> m_releases;
    QVector<Place> m_resets;
    QVector<FedKey> m_fedCombinations;
    QVector<FedKey> m_fedShortcuts;
};

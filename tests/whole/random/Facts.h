// SPDX-License-Identifier: MIT
#pragma once

#include "tests/whole/random/KeyInputs.h"

#include <QHash>

#include <optional>

/// A notification that was observed, taken apart.
struct Announcement
{
    QString action;
    QString receiver;
    QString sender;
    QStringList keys;
    std::chrono::milliseconds at{0};
    Place place;
};

/// A key release that the daemon saw, and what is due because of it.
struct Release
{
    KeyInput input;
    /// Whether the keyboard test was on.
    bool inTest = false;
    /// Whether this very release is a single key at once; the key that is sent then.
    bool isSentAtOnce = false;
    QString sentKey;
    /// When the window behind this release ends; nothing when another release comes before, or the script's
    /// end.
    std::optional<Place> windowEnd;
};

/// A key that a recogniser of combinations or shortcuts was given.
struct Fed
{
    int step = 0;
    QString key;
    /// The key that had opened a gesture before; empty if none had.
    QString opening;
    /// All keys since the last time that everything was forgotten, this one included.
    QStringList since;
};

enum class Answer { No, Yes, Maybe };

/// What a script says by itself about its play, and what was observed, in a form that invariants can be put
/// in. Nothing here knows what the daemon should announce for which row.
class Facts
{
public:
    explicit Facts(const Play& play);

    const Play& play() const { return m_play; }
    const KeyScript& script() const { return m_play.script; }
    const QVector<KeyInput>& inputs() const { return m_inputs; }
    const QVector<Announcement>& announcements() const { return m_announcements; }
    const QVector<Release>& releases() const { return m_releases; }
    const QVector<Fed>& fedCombinations() const { return m_fedCombinations; }
    const QVector<Fed>& fedShortcuts() const { return m_fedShortcuts; }
    /// When all that is pending is forgotten: at the end of windows and when a key was sent at once.
    const QVector<Place>& resets() const { return m_resets; }

    QString stateAt(const Place& place) const { return m_states.at(place.steps); }
    QVector<KeyRow> rows(KeyRow::Kind kind) const;
    const KeyInput* inputOf(int step) const;
    const Release* releaseOf(int step) const;
    QVector<Announcement> announcedIn(int step) const;
    QVector<Happening> happenedIn(int step) const;

    /// Whether a gesture or the factory reset was recognised since the last reset before `place`. Maybe, if
    /// one came at the same moment as either end.
    Answer gestureSeenBefore(const Place& place) const;

    static bool isSingleKey(const Announcement& announcement);
    /// Whether a recognised action was announced, or dropped because of the state.
    static bool isGesture(const Happening& happening);
    static bool isRefusal(const Happening& happening);
    static bool isUndefinedReceiver(const Happening& happening);

private:
    void collectAnnouncements();
    void sortIntoSteps();
    void collectReleases();
    void endWindows();
    QString pendingKeyBefore(const KeyInput& release) const;
    QVector<Fed> feed(KeyRow::Kind kind, const QString& command, int value) const;

    Play m_play;
    QStringList m_states;
    QVector<KeyInput> m_inputs;
    QVector<Announcement> m_announcements;
    QHash<int, QVector<Announcement>> m_announcedInSteps;
    QHash<int, QVector<Happening>> m_happenedInSteps;
    QVector<Release> m_releases;
    QVector<Place> m_resets;
    QVector<Fed> m_fedCombinations;
    QVector<Fed> m_fedShortcuts;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "control/input/InputRecord.h"

#include <QPair>
#include <QSet>
#include <QString>
#include <QVariantMap>

#include <deque>

namespace control {

/// Something that was seen at the device.
struct Happening
{
    enum class Kind {
        Key,
        State,
        Announcement,
        /// From here on, keys or announcements may be missing.
        Gap,
    };

    /// On the monotonic clock.
    std::chrono::microseconds at{0};
    Kind kind = Kind::Gap;
    /// Only for `Key`.
    InputRecord record{};
    /// The state, the announcement as key scripts write it, or what happened in words.
    QString text;
    /// Only for `Announcement`: its sender, which may be empty, and the text without it.
    QString sender;
    QString textWithoutSender;

    static Happening key(const InputRecord& record);
    static Happening state(const QString& state, std::chrono::microseconds at);
    static Happening announcement(const QVariantMap& notification, std::chrono::microseconds at);
    static Happening gap(const QString& words, std::chrono::microseconds at);
};

/// What was seen at the device, with a limit. Drops the oldest when it is full.
class Recording
{
public:
    /// A device, 0 or 1, and the code of a key.
    using DeviceKey = QPair<int, quint16>;

    /// A key script of so many lines stays below its largest size.
    static constexpr int maxCount = 15'000;
    /// Of all texts, in bytes of UTF-8.
    static constexpr int maxTextSize = 200'000;

    explicit Recording(std::chrono::microseconds begin = {}) : m_begin(begin) {}

    /// Adds a happening in the order of time: what came by another way may be late.
    void add(const Happening& happening);
    /// Drops what is older than `time`.
    void dropBefore(std::chrono::microseconds time);

    /// From when on it holds everything that was seen.
    std::chrono::microseconds begin() const { return m_begin; }
    /// The state at the beginning; empty if it is not known.
    QString initialState() const { return m_initialState; }
    /// The first state that is known; Idle if none is.
    QString firstState() const;
    /// The keys that were down at the beginning.
    const QSet<DeviceKey>& initialKeys() const { return m_initialKeys; }
    void setInitialKeys(const QSet<DeviceKey>& keys) { m_initialKeys = keys; }
    const std::deque<Happening>& happenings() const { return m_happenings; }
    bool isFull() const { return m_happenings.size() >= size_t(maxCount) || m_textSize >= maxTextSize; }
    /// How many happenings were dropped for lack of room.
    qint64 evicted() const { return m_evicted; }

private:
    void dropFirst();

    std::chrono::microseconds m_begin;
    QString m_initialState;
    QSet<DeviceKey> m_initialKeys;
    std::deque<Happening> m_happenings;
    int m_textSize = 0;
    qint64 m_evicted = 0;
};

} // namespace control

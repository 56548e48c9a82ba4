// SPDX-License-Identifier: MIT
#pragma once

#include "card/KeyCard.h"
#include "tests/virtual/VirtualDevice.h"

#include <chrono>

using KeyLists = QMap<QString, QByteArray>;

/// A virtual device for testing key cards. It records announcements as "MILLISECONDS ACTION RECEIVER", with
/// the time since its start.
class CardDevice
{
public:
    CardDevice(const KeyLists& lists, const QString& model, const QString& state);

    /// Performs the entry and waits for all its effects. Holds keys for at most a minute.
    void play(const KeyCardEntry& entry);
    /// Executes statements of a key script and waits for all their effects. Returns the faults of the
    /// statements.
    QStringList execute(const QStringList& statements);
    /// Presses the row's keys according to its kind, except keys that the panel lacks. Repeats a combination
    /// after every other key.
    void tryRow(const KeyCardDeadRow& row);

    VirtualDevice& panel() { return m_device; }
    QStringList heard() const { return m_heard; }
    /// The recorded announcements of the action of `entry` and of single keys.
    QStringList heardAbout(const KeyCardEntry& entry) const;

    static QStringList panelKeys();
    static bool isPanelKey(const QString& key) { return panelKeys().contains(key); }

    /// The expected announcements of `entry` of `card`: its action and single keys. If the hold is too long,
    /// only the single key.
    static QStringList expected(const KeyCardEntry& entry, const KeyCardState& card);

private:
    void hold(const QString& key, int milliseconds);
    void tapInTurn(const QStringList& keys);
    void tapInAllVariants(const QStringList& keys);
    void chord(const QString& held, const QString& pressed);

    VirtualDevice m_device;
    QStringList m_heard;
};

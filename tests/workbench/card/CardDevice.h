// SPDX-License-Identifier: MIT
#pragma once

#include "tests/virtual/VirtualDevice.h"
#include "workbench/card/KeyCard.h"

#include <chrono>

using KeyLists = QMap<QString, QByteArray>;

/// A virtual device on which key cards are put to the test. It notes what is announced, as texts
/// "MILLISECONDS ACTION RECEIVER", counted from its start.
class CardDevice
{
public:
    CardDevice(const KeyLists& lists, const QString& model, const QString& state);

    /// Does what the entry says, and waits until nothing can come any more. A hold of more than a minute is
    /// given up.
    void play(const KeyCardEntry& entry);
    /// Does with the row's keys what its kind asks for, as far as the panel has them; with those of a
    /// combination also after every other key.
    void tryOut(const KeyCardNever& row);

    VirtualDevice& panel() { return m_device; }
    QStringList heard() const { return m_heard; }
    /// Of what was heard, the action of `entry` and the single keys.
    QStringList heardAbout(const KeyCardEntry& entry) const;

    /// What must be heard about `entry` of `card` when it is played: its action and the single keys that it
    /// announces as well. After a hold that is given up it is the single key alone.
    static QStringList expected(const KeyCardEntry& entry, const KeyCardState& card);

private:
    void hold(const QString& key, int milliseconds);
    void tapInTurn(const QStringList& keys);
    void tapInEveryWay(const QStringList& keys);
    void chord(const QString& held, const QString& pressed);

    VirtualDevice m_device;
    QStringList m_heard;
};

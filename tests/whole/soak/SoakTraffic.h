// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/SimulatedDevice.h"
#include "tests/whole/random/Dice.h"

#include <functional>

/// Random traffic on a simulated device, in rounds: a random script, then a burst of keys that are announced
/// one by one, then presses of Menu whose announcements are timed. Which traffic, the seed decides.
class SoakTraffic : public QObject
{
    Q_OBJECT

public:
    struct Counts
    {
        int rounds = 0;
        int keys = 0;
        int commands = 0;
        int states = 0;
        int announcements = 0;
    };

    /// `device` must live as long as the traffic.
    SoakTraffic(SimulatedDevice& device, quint64 seed);

    /// Plays a round and leaves the device in Idle with nothing pending. Returns a sentence about what was
    /// lost, or an empty text.
    QString playRound();

    const Counts& counts() const { return m_counts; }
    /// From the write of a press of Menu to the arrival of its announcement, in milliseconds, since the last
    /// call.
    QVector<double> takeLatencies();

private:
    void note(const QVariantMap& notification);

    QString playRandomScript();
    QString letGo();
    QString playBurst();
    QString timeMenu();

    bool waitFor(const std::function<bool()>& isReached);
    bool enter(const QString& state);
    bool roundTrip(const QString& command);
    void tap(int device, const QString& key);
    void pause(int ms);

    SimulatedDevice& m_device;
    const quint64 m_seed;
    Dice m_dice;
    Counts m_counts;
    int m_unanswered = 0;
    int m_refused = 0;
    /// The keys that were announced as single keys since this was last emptied.
    QStringList m_singleKeys;
    QVector<double> m_latencies;
};

// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/device/SimulatedDevice.h"
#include "tests/whole/random/Dice.h"

#include <functional>

/// Random traffic on a simulated device, in rounds: a random script, a burst of keys that are announced
/// individually, and presses of Menu with timed announcements. The seed determines the traffic.
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

    /// Plays a round and leaves the device in Idle with nothing pending. Returns a sentence about a loss, or
    /// an empty string.
    QString playRound();

    const Counts& counts() const { return m_counts; }
    /// The times from writing a press of Menu to its announcement since the last call, in milliseconds.
    QVector<double> takeLatencies();

private:
    void note(const QVariantMap& notification);

    QString playRandomScript();
    QString releaseAll();
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
    /// The announced single keys since the last clear().
    QStringList m_singleKeys;
    QVector<double> m_latencies;
};

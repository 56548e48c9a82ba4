// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/Observation.h"

#include <QElapsedTimer>
#include <QObject>

#include <limits>

class SimulatedDevice;

/// Keeps what a simulated device's daemon does, as the observations that a key script can expect.
class ObservationRecorder : public QObject
{
    Q_OBJECT

public:
    /// `device` must live as long as the recorder.
    explicit ObservationRecorder(SimulatedDevice& device, QObject* parent = nullptr);

    /// Forgets what was seen and counts the time from now.
    void restart();

    /// Keeps no more than the first `observations`; without a limit at first.
    void setLimit(int observations) { m_limit = observations; }

    const Observations& observations() const { return m_observations; }
    std::chrono::milliseconds elapsed() const;

Q_SIGNALS:
    void observed(const Observation& observation);

private:
    void add(const QString& text);

    int m_limit = std::numeric_limits<int>::max();
    Observations m_observations;
    QElapsedTimer m_clock;
};

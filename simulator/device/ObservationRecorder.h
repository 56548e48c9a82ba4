// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/Observation.h"

#include <QElapsedTimer>
#include <QObject>

#include <limits>

class SimulatedDevice;

/// Records the actions of a simulated device's daemon as observations of a key script.
class ObservationRecorder : public QObject
{
    Q_OBJECT

public:
    /// `device` must live as long as the recorder.
    explicit ObservationRecorder(SimulatedDevice& device, QObject* parent = nullptr);

    /// Clears the observations and restarts the clock.
    void restart();

    /// Keeps only the first `observations`; by default, keeps all.
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

// SPDX-License-Identifier: MIT
#include "simulator/device/ObservationRecorder.h"

#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/ObservationText.h"

ObservationRecorder::ObservationRecorder(SimulatedDevice& device, QObject* parent) : QObject(parent)
{
    restart();
    connect(&device, &SimulatedDevice::announced, this,
            [this](const QVariantMap& notification) { add(ObservationText::announcement(notification)); });
    connect(&device, &SimulatedDevice::spoken, this,
            [this](const QVariantMap& request) { add(ObservationText::speech(request)); });
    connect(&device, &SimulatedDevice::speechCancelled, this,
            [this] { add(ObservationText::cancellation()); });
    connect(&device, &SimulatedDevice::answered, this,
            [this](const QVariantMap& response) { add(ObservationText::answer(response)); });
    connect(&device, &SimulatedDevice::commandFailed, this, [this](const QDBusError& error) {
        add(ObservationText::answer({{QStringLiteral("busError"), error.name()}}));
    });
    connect(&device, &SimulatedDevice::logLine, this,
            [this](const QString& line) { add(ObservationText::logLine(line)); });
}

void ObservationRecorder::restart()
{
    m_observations.clear();
    m_clock.start();
}

std::chrono::milliseconds ObservationRecorder::elapsed() const
{
    return std::chrono::milliseconds(m_clock.elapsed());
}

void ObservationRecorder::add(const QString& text)
{
    const Observation observation{elapsed(), text};
    if (m_observations.size() < m_limit) {
        m_observations.append(observation);
    }
    Q_EMIT observed(observation);
}

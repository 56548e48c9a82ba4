// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

#include <QObject>
#include <QTextStream>

class DeviceRecorder;
class SimulatedDevice;

/// Writes what happens at a simulated device for a person to follow: a line for each thing, with the
/// seconds since the start.
class TranscriptPrinter : public QObject
{
    Q_OBJECT

public:
    /// `device` and `recorder`, whose clock is used, must live as long as the printer.
    TranscriptPrinter(SimulatedDevice& device, const DeviceRecorder& recorder, QObject* parent = nullptr);

    void printStep(const ScriptStep& step);
    void printText(const QString& text);

private:
    void printAnnouncement(const QVariantMap& notification);
    void printSpeech(const QVariantMap& request);
    void printLogLine(const QString& line);
    void print(const QString& label, const QString& text);

    const DeviceRecorder& m_recorder;
    QTextStream m_output;
};

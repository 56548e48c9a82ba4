// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QTextStream>

class DeviceSession;

/// Writes what happens in a session for a person to follow: a line for each thing, with the seconds since the
/// device became ready.
class TranscriptPrinter : public QObject
{
    Q_OBJECT

public:
    /// `session` must live as long as the printer.
    explicit TranscriptPrinter(DeviceSession& session, QObject* parent = nullptr);

    void printText(const QString& text);

private:
    void printEntry(const QJsonObject& entry);
    void printDevice(const QJsonObject& entry);
    void printReplay(const QJsonObject& entry);
    void printKey(const QJsonObject& entry);
    void printLogLine(const QString& line);
    void print(const QString& label, const QString& text);

    QTextStream m_output;
    /// When the device became ready, and when the present entry came, in milliseconds.
    double m_ready = 0;
    double m_now = 0;
};

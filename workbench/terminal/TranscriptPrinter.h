// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/session/SessionEntry.h"

#include <QObject>
#include <QTextStream>

class Session;

/// Prints a transcript of a session: a line for each event, with the seconds since the device became ready.
class TranscriptPrinter : public QObject
{
    Q_OBJECT

public:
    /// `session` must live as long as the printer.
    explicit TranscriptPrinter(Session& session, QObject* parent = nullptr);

    void printText(const QString& text);

private:
    void printEntry(const SessionEntry& entry);
    void print(const entry::Device& device);
    void print(const entry::Key& key);
    void print(const entry::Record& record);
    void print(const entry::LogLine& line);
    void print(const entry::Announcement& announcement);
    void print(const entry::Speech& speech);
    void print(const entry::Answer& answer);
    void print(const entry::Replay& replay);
    /// Other events are not printed.
    template <typename Event>
    void print(const Event& /*event*/)
    {}
    void printLine(const char* label, const QString& text);

    QTextStream m_output;
    /// The times at which the device became ready and the current entry was added.
    std::chrono::milliseconds m_ready{0};
    std::chrono::milliseconds m_now{0};
};

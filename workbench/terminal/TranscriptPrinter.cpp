// SPDX-License-Identifier: MIT
#include "workbench/terminal/TranscriptPrinter.h"

#include "simulator/script/CommandWords.h"
#include "simulator/script/KeyValue.h"
#include "simulator/script/ServiceWords.h"
#include "workbench/session/Session.h"

namespace {

constexpr int labelWidth = 10;

/// An observation without its keyword.
QString detailsOf(const QString& observation)
{
    return observation.section(' ', 1);
}

} // namespace

TranscriptPrinter::TranscriptPrinter(Session& session, QObject* parent) : QObject(parent), m_output(stdout)
{
    m_output.setCodec("UTF-8");
    connect(&session, &Session::added, this, &TranscriptPrinter::printEntry);
}

void TranscriptPrinter::printText(const QString& text)
{
    m_output << text << '\n';
    m_output.flush();
}

void TranscriptPrinter::printEntry(const SessionEntry& entry)
{
    m_now = entry.at;
    std::visit(
        Overloaded{
            [this](const entry::Heading& heading) { printText('\n' + heading.text); },
            [this](const entry::State& state) { printLine("state", state.state); },
            [this](const entry::Service& service) {
                printLine("service", ServiceWords::wordsOf(service.change).join(' '));
            },
            [this](const entry::Command& command) {
                printLine("command", CommandWords::wordsOf(command.command).join(' '));
            },
            [this](const entry::ConsoleLine& line) { printLine("typed", line.text); },
            [this](const entry::SpeechCancelled& /*cancelled*/) { printLine("cancelled", "all speech"); },
            [this](const auto& other) { print(other); },
        },
        entry.event);
}

void TranscriptPrinter::print(const entry::Device& device)
{
    switch (device.status) {
    case entry::Device::Status::Starting:
        m_ready = std::chrono::milliseconds(0);
        printText(
            QStringLiteral("An embosser of the model %1, in the state %2.").arg(device.model, device.state));
        break;
    case entry::Device::Status::Ready:
        m_ready = m_now;
        break;
    case entry::Device::Status::Ended:
        printText(device.reason);
        break;
    }
}

void TranscriptPrinter::print(const entry::Key& key)
{
    const QString text = QStringLiteral("%1  (device %2)").arg(key.key).arg(key.keyboard);
    // Repetitions are omitted, because they would flood the transcript.
    if (key.value == KeyValue::pressed) {
        printLine("press", text);
    } else if (key.value == KeyValue::released) {
        printLine("release", text);
    }
}

void TranscriptPrinter::print(const entry::Record& record)
{
    printLine("record", QStringLiteral("type %1, code %2, value %3  (device %4)")
                            .arg(record.record.type)
                            .arg(record.record.code)
                            .arg(record.record.value)
                            .arg(record.keyboard));
}

void TranscriptPrinter::print(const entry::LogLine& line)
{
    if (line.text.trimmed().isEmpty()) {
        return;
    }
    const bool isRefusal = line.text.contains(QLatin1String("Expected state is:"));
    printLine(isRefusal ? "refused" : "log", line.text);
}

void TranscriptPrinter::print(const entry::Announcement& announcement)
{
    const QString& sender = announcement.sender;
    printLine("announced",
              QStringLiteral("%1 %2  to %3, %4")
                  .arg(announcement.action, announcement.keys.join(QStringLiteral(" + ")),
                       announcement.receiver,
                       sender.isEmpty() ? QStringLiteral("no sender") : QStringLiteral("sender ") + sender));
}

void TranscriptPrinter::print(const entry::Speech& speech)
{
    printLine("spoken", QStringLiteral("\"%1\"  (%2)").arg(speech.sentence, detailsOf(speech.observation)));
}

void TranscriptPrinter::print(const entry::Answer& answer)
{
    const QString message = answer.response.value(QStringLiteral("message")).toString();
    if (message.isEmpty()) {
        printLine("answered", detailsOf(answer.observation));
    } else {
        printLine("failed", message);
    }
}

void TranscriptPrinter::print(const entry::Replay& replay)
{
    if (replay.status != entry::Replay::Status::Finished) {
        return;
    }
    if (replay.differences.isEmpty()) {
        printText(QStringLiteral("\nAll %1 expectations were met, and nothing else happened.")
                      .arg(replay.expectations));
    } else {
        printText(QStringLiteral("\nNot as expected:\n") + replay.differences.join('\n'));
    }
}

void TranscriptPrinter::printLine(const char* label, const QString& text)
{
    const double seconds = std::chrono::duration<double>(m_now - m_ready).count();
    printText(QStringLiteral("%1 s  %2 %3")
                  .arg(seconds, 7, 'f', 2)
                  .arg(QLatin1String(label), -labelWidth)
                  .arg(text));
}

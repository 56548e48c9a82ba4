// SPDX-License-Identifier: MIT
#include "simulator/demonstration/TranscriptPrinter.h"

#include "simulator/device/DeviceRecorder.h"
#include "simulator/device/Sentences.h"
#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/CommandWords.h"
#include "simulator/script/ObservationText.h"

#include <ls/MessageKeys.h>

namespace {

constexpr double millisecondsPerSecond = 1000;
constexpr int labelWidth = 10;

QString keysOf(const QVariantMap& notification)
{
    QStringList keys;
    for (const QString& key : {ls::firstKeyKey, ls::secondKeyKey}) {
        if (notification.contains(key)) {
            keys << notification.value(key).toString();
        }
    }
    return keys.join(QStringLiteral(" + "));
}

QString deviceKey(const ScriptStep& step)
{
    return QStringLiteral("%1  (device %2)").arg(step.text).arg(step.device);
}

QString recordText(const ScriptStep& step)
{
    return QStringLiteral("type %1, code %2, value %3  (device %4)")
        .arg(step.record.type)
        .arg(step.record.code)
        .arg(step.record.value)
        .arg(step.device);
}

} // namespace

TranscriptPrinter::TranscriptPrinter(SimulatedDevice& device, const DeviceRecorder& recorder, QObject* parent)
    : QObject(parent), m_recorder(recorder), m_output(stdout)
{
    m_output.setCodec("UTF-8");
    connect(&device, &SimulatedDevice::announced, this, &TranscriptPrinter::printAnnouncement);
    connect(&device, &SimulatedDevice::spoken, this, &TranscriptPrinter::printSpeech);
    connect(&device, &SimulatedDevice::speechCancelled, this,
            [this] { print(QStringLiteral("hushed"), QStringLiteral("all speech is cancelled")); });
    connect(&device, &SimulatedDevice::answered, this, [this](const QVariantMap& response) {
        print(QStringLiteral("answered"), ObservationText::answer(response).section(' ', 1));
    });
    connect(&device, &SimulatedDevice::commandFailed, this,
            [this](const QDBusError& error) { print(QStringLiteral("failed"), error.message()); });
    connect(&device, &SimulatedDevice::logLine, this, &TranscriptPrinter::printLogLine);
}

void TranscriptPrinter::printStep(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Heading:
        printText(QStringLiteral("\n") + step.text);
        break;
    case ScriptStep::Kind::Press:
        print(QStringLiteral("press"), deviceKey(step));
        break;
    case ScriptStep::Kind::Release:
        print(QStringLiteral("release"), deviceKey(step));
        break;
    case ScriptStep::Kind::Record:
        print(QStringLiteral("record"), recordText(step));
        break;
    case ScriptStep::Kind::State:
        print(QStringLiteral("state"), step.text);
        break;
    case ScriptStep::Kind::Command:
        print(QStringLiteral("command"), CommandWords::wordsOf(step.command).join(' '));
        break;
    case ScriptStep::Kind::Console:
        print(QStringLiteral("typed"), step.text);
        break;
    }
}

void TranscriptPrinter::printText(const QString& text)
{
    m_output << text << '\n';
    m_output.flush();
}

void TranscriptPrinter::printAnnouncement(const QVariantMap& notification)
{
    const QString sender = notification.value(ls::senderIdKey).toString();
    print(QStringLiteral("announced"),
          QStringLiteral("%1 %2  to %3, %4")
              .arg(notification.value(ls::actionIdKey).toString(), keysOf(notification),
                   notification.value(ls::receiverIdKey).toString(),
                   sender.isEmpty() ? QStringLiteral("no sender") : QStringLiteral("sender ") + sender));
}

void TranscriptPrinter::printSpeech(const QVariantMap& request)
{
    const QString text = Sentences::textOf(request.value(QStringLiteral("serviceId"), -1).toInt(),
                                           request.value(QStringLiteral("sentenceId")).toInt());
    print(QStringLiteral("spoken"),
          QStringLiteral("\"%1\"  (%2)").arg(text, ObservationText::speech(request).section(' ', 1)));
}

void TranscriptPrinter::printLogLine(const QString& line)
{
    if (line.trimmed().isEmpty()) {
        return;
    }
    const bool refused = line.contains(QLatin1String("Expected state is:"));
    print(refused ? QStringLiteral("refused") : QStringLiteral("log"), line);
}

void TranscriptPrinter::print(const QString& label, const QString& text)
{
    const double seconds = double(m_recorder.elapsed().count()) / millisecondsPerSecond;
    printText(QStringLiteral("%1 s  %2 %3").arg(seconds, 7, 'f', 2).arg(label, -labelWidth).arg(text));
}

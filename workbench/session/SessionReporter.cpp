// SPDX-License-Identifier: MIT
#include "workbench/session/SessionReporter.h"

#include "model/DaemonInputs.h"
#include "simulator/device/Sentences.h"
#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/KeyValue.h"
#include "simulator/script/ObservationText.h"
#include "vocabulary/Vocabulary.h"

#include <ls/MessageKeys.h>
#include <translation/Sid.h>

#include <linux/input-event-codes.h>

namespace {

const QString busErrorKey = QStringLiteral("busError");

QString keyOf(const RawRecord& record)
{
    const bool isKey =
        record.type == EV_KEY && record.value >= KeyValue::released && record.value <= KeyValue::repeated;
    return isKey ? ls::KeyId::meta.key(record.code) : QString();
}

QStringList keysOf(const QVariantMap& notification)
{
    QStringList keys;
    for (const QString& key : {ls::firstKeyKey, ls::secondKeyKey}) {
        if (notification.contains(key)) {
            keys.append(notification.value(key).toString());
        }
    }
    return keys;
}

bool isRefusalToStart(const QVariantMap& request)
{
    return request.value(vocabulary::speechServiceIdKey, -1).toInt() == vocabulary::errorSentences &&
           request.value(vocabulary::speechSentenceIdKey) ==
               int(libtranslation::Sid::EmbosserError::StartingUp);
}

} // namespace

SessionReporter::SessionReporter(SimulatedDevice& device, const QString& state, const model::KeyLists& lists,
                                 QObject* parent)
    : QObject(parent), m_state(state), m_refusals(lists, state)
{
    m_clock.start();
    connect(&device, &SimulatedDevice::written, this, &SessionReporter::onWritten);
    connect(&device, &SimulatedDevice::announced, this, &SessionReporter::onAnnounced);
    connect(&device, &SimulatedDevice::spoken, this, &SessionReporter::onSpoken);
    connect(&device, &SimulatedDevice::speechCancelled, this, [this] {
        Q_EMIT happened(entry::SpeechCancelled());
        Q_EMIT observed(ObservationText::cancellation());
    });
    connect(&device, &SimulatedDevice::answered, this, &SessionReporter::onAnswered);
    connect(&device, &SimulatedDevice::commandFailed, this, &SessionReporter::onFailed);
    connect(&device, &SimulatedDevice::logLine, this, &SessionReporter::onLogLine);
    connect(&device, &SimulatedDevice::outputLine, this,
            [this](const QString& line) { Q_EMIT happened(entry::OutputLine{line}); });
}

void SessionReporter::noteStep(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Heading:
        Q_EMIT happened(entry::Heading{step.text});
        break;
    case ScriptStep::Kind::State:
        m_state = step.text;
        m_refusals.take(now(), model::DaemonInputs::ofState(step.text));
        Q_EMIT happened(entry::State{step.text});
        break;
    case ScriptStep::Kind::Service:
        Q_EMIT happened(entry::Service{step.service});
        break;
    case ScriptStep::Kind::Command:
        m_refusals.take(now(), model::DaemonInputs::ofCommand(step.command));
        Q_EMIT happened(entry::Command{step.command});
        break;
    case ScriptStep::Kind::Console:
        m_refusals.take(now(), model::DaemonInputs::ofConsoleLine(step.text));
        Q_EMIT happened(entry::ConsoleLine{step.text});
        break;
    case ScriptStep::Kind::Press:
    case ScriptStep::Kind::Release:
    case ScriptStep::Kind::Record:
        break;
    }
}

void SessionReporter::onWritten(int keyboard, const RawRecord& record)
{
    if (record.type == EV_SYN && record.code == SYN_REPORT) {
        return;
    }
    m_refusals.take(now(), model::DaemonInputs::ofRecord(record.type, record.code, record.value, keyboard));
    const QString key = keyOf(record);
    if (key.isEmpty()) {
        Q_EMIT happened(entry::Record{keyboard, record});
        return;
    }
    Q_EMIT happened(entry::Key{keyboard, key, record.value});
}

void SessionReporter::onAnnounced(const QVariantMap& notification)
{
    const QString text = ObservationText::announcement(notification);
    Q_EMIT happened(entry::Announcement{
        notification.value(ls::actionIdKey).toString(), notification.value(ls::receiverIdKey).toString(),
        notification.value(ls::senderIdKey).toString(), keysOf(notification), text});
    Q_EMIT observed(text);
}

void SessionReporter::onSpoken(const QVariantMap& request)
{
    const QString sentence = Sentences::textOf(request.value(vocabulary::speechServiceIdKey, -1).toInt(),
                                               request.value(vocabulary::speechSentenceIdKey).toInt());
    const QString text = ObservationText::speech(request);
    Q_EMIT happened(entry::Speech{sentence, text});
    Q_EMIT observed(text);
    if (isRefusalToStart(request)) {
        Q_EMIT happened(entry::Refusal{sentence, {}, m_state, {}});
    }
}

void SessionReporter::onAnswered(const QVariantMap& response)
{
    const QString text = ObservationText::answer(response);
    Q_EMIT happened(entry::Answer{response, text});
    Q_EMIT observed(text);
}

void SessionReporter::onFailed(const QDBusError& error)
{
    const QString text = ObservationText::answer({{busErrorKey, error.name()}});
    Q_EMIT happened(
        entry::Answer{{{busErrorKey, error.name()}, {QStringLiteral("message"), error.message()}}, text});
    Q_EMIT observed(text);
}

void SessionReporter::onLogLine(const QString& line)
{
    Q_EMIT happened(entry::LogLine{line});
    Q_EMIT observed(ObservationText::logLine(line));
    if (const std::optional<entry::Refusal> refusal = m_refusals.find(now(), line)) {
        Q_EMIT happened(*refusal);
    }
}

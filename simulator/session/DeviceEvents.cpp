// SPDX-License-Identifier: MIT
#include "simulator/session/DeviceEvents.h"

#include "simulator/device/Sentences.h"
#include "simulator/device/SimulatedDevice.h"
#include "simulator/script/CommandWords.h"
#include "simulator/script/KeyValue.h"
#include "simulator/script/ObservationText.h"
#include "simulator/script/ServiceWords.h"
#include "vocabulary/Vocabulary.h"

#include <ls/MessageKeys.h>
#include <translation/Sid.h>

#include <QJsonArray>

#include <linux/input-event-codes.h>

namespace {

const QString typeKey = QStringLiteral("type");
const QString textKey = QStringLiteral("text");
const QString busErrorKey = QStringLiteral("busError");
const QString observationKey = QStringLiteral("observation");

QJsonObject textEntry(const QString& type, const QString& text)
{
    return {{typeKey, type}, {textKey, text}};
}

QString keyOf(const RawRecord& record)
{
    const bool isKey =
        record.type == EV_KEY && record.value >= KeyValue::released && record.value <= KeyValue::repeated;
    return isKey ? ls::KeyId::meta.key(record.code) : QString();
}

QJsonObject recordEntry(int device, const RawRecord& record)
{
    return {{typeKey, QStringLiteral("record")},
            {QStringLiteral("device"), device},
            {QStringLiteral("recordType"), record.type},
            {QStringLiteral("code"), record.code},
            {QStringLiteral("value"), record.value}};
}

QJsonArray keysOf(const QVariantMap& notification)
{
    QJsonArray keys;
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

DeviceEvents::DeviceEvents(SimulatedDevice& device, const QString& state, const QVector<KeyRow>& rows,
                           QObject* parent)
    : QObject(parent), m_state(state), m_refusals(rows)
{
    connect(&device, &SimulatedDevice::written, this, &DeviceEvents::onWritten);
    connect(&device, &SimulatedDevice::announced, this, &DeviceEvents::onAnnounced);
    connect(&device, &SimulatedDevice::spoken, this, &DeviceEvents::onSpoken);
    connect(&device, &SimulatedDevice::speechCancelled, this, [this] {
        Q_EMIT happened({{typeKey, QStringLiteral("cancel")}});
        Q_EMIT observed(ObservationText::cancellation());
    });
    connect(&device, &SimulatedDevice::answered, this, &DeviceEvents::onAnswered);
    connect(&device, &SimulatedDevice::commandFailed, this, &DeviceEvents::onFailed);
    connect(&device, &SimulatedDevice::logLine, this, &DeviceEvents::onLogLine);
    connect(&device, &SimulatedDevice::outputLine, this,
            [this](const QString& line) { Q_EMIT happened(textEntry(QStringLiteral("output"), line)); });
}

void DeviceEvents::noteStep(const ScriptStep& step)
{
    switch (step.kind) {
    case ScriptStep::Kind::Heading:
        Q_EMIT happened(textEntry(QStringLiteral("heading"), step.text));
        break;
    case ScriptStep::Kind::State:
        m_state = step.text;
        Q_EMIT happened({{typeKey, QStringLiteral("state")}, {QStringLiteral("state"), step.text}});
        break;
    case ScriptStep::Kind::Service:
        Q_EMIT happened(textEntry(QStringLiteral("service"), ServiceWords::wordsOf(step.service).join(' ')));
        break;
    case ScriptStep::Kind::Command:
        m_refusals.noteSimulated(step.command.value(ls::keysListKey).toStringList() +
                                 QStringList(step.command.value(ls::keyKey).toString()));
        Q_EMIT happened(textEntry(QStringLiteral("command"), CommandWords::wordsOf(step.command).join(' ')));
        break;
    case ScriptStep::Kind::Console:
        m_refusals.noteSimulated(ls::KeyId::meta.keys());
        Q_EMIT happened(textEntry(QStringLiteral("console"), step.text));
        break;
    case ScriptStep::Kind::Press:
    case ScriptStep::Kind::Release:
    case ScriptStep::Kind::Record:
        break;
    }
}

void DeviceEvents::onWritten(int device, const RawRecord& record)
{
    if (record.type == EV_SYN && record.code == SYN_REPORT) {
        return;
    }
    const QString key = keyOf(record);
    if (key.isEmpty()) {
        Q_EMIT happened(recordEntry(device, record));
        return;
    }
    m_refusals.noteKey(device, key, record.value);
    Q_EMIT happened({{typeKey, QStringLiteral("key")},
                     {QStringLiteral("device"), device},
                     {QStringLiteral("key"), key},
                     {QStringLiteral("value"), record.value}});
}

void DeviceEvents::onAnnounced(const QVariantMap& notification)
{
    const QString text = ObservationText::announcement(notification);
    Q_EMIT happened({{typeKey, QStringLiteral("announcement")},
                     {QStringLiteral("action"), notification.value(ls::actionIdKey).toString()},
                     {QStringLiteral("receiver"), notification.value(ls::receiverIdKey).toString()},
                     {QStringLiteral("sender"), notification.value(ls::senderIdKey).toString()},
                     {QStringLiteral("keys"), keysOf(notification)},
                     {observationKey, text}});
    Q_EMIT observed(text);
}

void DeviceEvents::onSpoken(const QVariantMap& request)
{
    const QString sentence = Sentences::textOf(request.value(vocabulary::speechServiceIdKey, -1).toInt(),
                                               request.value(vocabulary::speechSentenceIdKey).toInt());
    const QString text = ObservationText::speech(request);
    QJsonObject entry = textEntry(QStringLiteral("speech"), sentence);
    entry.insert(observationKey, text);
    Q_EMIT happened(entry);
    Q_EMIT observed(text);
    if (isRefusalToStart(request)) {
        report({sentence, {}, m_state, {}});
    }
}

void DeviceEvents::onAnswered(const QVariantMap& response)
{
    reportAnswer(ObservationText::answer(response), response);
}

void DeviceEvents::onFailed(const QDBusError& error)
{
    const QVariantMap response{{busErrorKey, error.name()}};
    reportAnswer(ObservationText::answer(response),
                 {{busErrorKey, error.name()}, {QStringLiteral("message"), error.message()}});
}

void DeviceEvents::onLogLine(const QString& line)
{
    Q_EMIT happened(textEntry(QStringLiteral("log"), line));
    Q_EMIT observed(ObservationText::logLine(line));
    if (const std::optional<Refusal> refusal = m_refusals.find(line)) {
        report(*refusal);
    }
}

void DeviceEvents::reportAnswer(const QString& text, const QVariantMap& response)
{
    QJsonObject entry = textEntry(QStringLiteral("answer"), text);
    entry.insert(QStringLiteral("response"), QJsonObject::fromVariantMap(response));
    Q_EMIT happened(entry);
    Q_EMIT observed(text);
}

void DeviceEvents::report(const Refusal& refusal)
{
    QJsonObject entry{{typeKey, QStringLiteral("refusal")}, {QStringLiteral("reason"), refusal.reason}};
    if (refusal.expected) {
        entry.insert(QStringLiteral("expected"), *refusal.expected);
    }
    const QPair<const char*, QString> details[] = {{"current", refusal.current}, {"action", refusal.action}};
    for (const auto& [name, value] : details) {
        if (!value.isEmpty()) {
            entry.insert(QLatin1String(name), value);
        }
    }
    Q_EMIT happened(entry);
}

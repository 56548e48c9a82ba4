// SPDX-License-Identifier: MIT
#include "workbench/web/SessionJson.h"

#include "keys/KeyRules.h"
#include "model/Autorepeat.h"
#include "simulator/script/CommandWords.h"
#include "simulator/script/ScriptWords.h"
#include "simulator/script/ServiceWords.h"
#include "workbench/session/Session.h"

#include <QJsonArray>

#include <algorithm>

namespace {

QString nameOf(entry::Device::Status status)
{
    static const QStringList names{"starting", "ready", "ended"};
    return names.at(int(status));
}

QString nameOf(entry::Replay::Status status)
{
    static const QStringList names{"playing", "finished", "stopped"};
    return names.at(int(status));
}

QJsonObject typed(const char* type, QJsonObject members)
{
    members.insert(QStringLiteral("type"), QLatin1String(type));
    return members;
}

QJsonObject textOf(const char* type, const QString& text)
{
    return typed(type, {{QStringLiteral("text"), text}});
}

void insertUnlessEmpty(QJsonObject& object, const char* member, const QString& text)
{
    if (!text.isEmpty()) {
        object.insert(QLatin1String(member), text);
    }
}

QJsonObject toJson(const entry::Device& device)
{
    QJsonObject object = typed("device", {{QStringLiteral("status"), nameOf(device.status)},
                                          {QStringLiteral("model"), device.model},
                                          {QStringLiteral("state"), device.state}});
    insertUnlessEmpty(object, "reason", device.reason);
    return object;
}

QJsonObject toJson(const entry::Key& key)
{
    return typed("key", {{QStringLiteral("device"), key.keyboard},
                         {QStringLiteral("key"), key.key},
                         {QStringLiteral("value"), key.value}});
}

QJsonObject toJson(const entry::Record& record)
{
    return typed("record", {{QStringLiteral("device"), record.keyboard},
                            {QStringLiteral("recordType"), record.record.type},
                            {QStringLiteral("code"), record.record.code},
                            {QStringLiteral("value"), record.record.value}});
}

QJsonObject toJson(const entry::Announcement& announcement)
{
    return typed("announcement", {{QStringLiteral("action"), announcement.action},
                                  {QStringLiteral("receiver"), announcement.receiver},
                                  {QStringLiteral("sender"), announcement.sender},
                                  {QStringLiteral("keys"), QJsonArray::fromStringList(announcement.keys)},
                                  {QStringLiteral("observation"), announcement.observation}});
}

QJsonObject toJson(const entry::Speech& speech)
{
    return typed("speech", {{QStringLiteral("text"), speech.sentence},
                            {QStringLiteral("observation"), speech.observation}});
}

QJsonObject toJson(const entry::Answer& answer)
{
    return typed("answer", {{QStringLiteral("text"), answer.observation},
                            {QStringLiteral("response"), QJsonObject::fromVariantMap(answer.response)}});
}

QJsonObject toJson(const entry::Refusal& refusal)
{
    QJsonObject object = typed("refusal", {{QStringLiteral("reason"), refusal.reason}});
    if (refusal.expected) {
        object.insert(QStringLiteral("expected"), *refusal.expected);
    }
    insertUnlessEmpty(object, "current", refusal.current);
    insertUnlessEmpty(object, "action", refusal.action);
    return object;
}

QJsonObject toJson(const entry::Recording& recording)
{
    return recording.isFull ? typed("recording", {{QStringLiteral("status"), QStringLiteral("full")}})
                            : typed("recording", {{QStringLiteral("status"), QStringLiteral("recording")},
                                                  {QStringLiteral("former"), recording.hasFormer}});
}

QJsonObject toJson(const entry::Replay& replay)
{
    QJsonObject object = typed("replay", {{QStringLiteral("status"), nameOf(replay.status)},
                                          {QStringLiteral("expectations"), replay.expectations}});
    if (replay.status != entry::Replay::Status::Playing) {
        object.insert(QStringLiteral("differences"), QJsonArray::fromStringList(replay.differences));
    }
    return object;
}

QJsonObject toJson(const SessionEvent& event)
{
    return std::visit(Overloaded{
                          [](const entry::Heading& heading) { return textOf("heading", heading.text); },
                          [](const entry::State& state) {
                              return typed("state", {{"state", state.state}});
                          },
                          [](const entry::Service& service) {
                              return textOf("service", ServiceWords::wordsOf(service.change).join(' '));
                          },
                          [](const entry::Command& command) {
                              return textOf("command", CommandWords::wordsOf(command.command).join(' '));
                          },
                          [](const entry::ConsoleLine& line) { return textOf("console", line.text); },
                          [](const entry::LogLine& line) { return textOf("log", line.text); },
                          [](const entry::OutputLine& line) { return textOf("output", line.text); },
                          [](const entry::SpeechCancelled& /*cancelled*/) { return typed("cancel", {}); },
                          [](const entry::KeyboardTest& test) {
                              return typed("test", {{"running", test.isRunning}});
                          },
                          [](const entry::Daemon& daemon) {
                              return typed("daemon", {{"answering", daemon.isAnswering}});
                          },
                          [](const auto& other) { return toJson(other); },
                      },
                      event);
}

/// The identifiers of a family in the order of their ordinals.
QJsonArray inOrder(const QMap<QString, int>& family, const QString& left = {})
{
    QStringList names = family.keys();
    names.removeOne(left);
    std::sort(names.begin(), names.end(), [&](const QString& one, const QString& other) {
        return family.value(one) < family.value(other);
    });
    return QJsonArray::fromStringList(names);
}

QJsonObject timesOfKeys()
{
    return {{QStringLiteral("singleKeyMs"), qint64(KeyRules::singleKeyInterval.count())},
            {QStringLiteral("factoryResetMs"), qint64(KeyRules::factoryResetHold.count())},
            {QStringLiteral("repeatDelayMs"), qint64(Autorepeat::delay.count())}};
}

QJsonArray keysOf(const QVector<HeldKey>& held)
{
    QJsonArray keys;
    for (const auto& [keyboard, key] : held) {
        keys.append(QJsonObject{{QStringLiteral("device"), keyboard}, {QStringLiteral("key"), key}});
    }
    return keys;
}

} // namespace

QJsonObject SessionJson::entry(const SessionEntry& entry)
{
    QJsonObject object = toJson(entry.event);
    object.insert(QStringLiteral("id"), entry.id);
    object.insert(QStringLiteral("at"), qint64(entry.at.count()));
    return object;
}

QJsonObject SessionJson::description(const Session& session)
{
    QJsonObject object{{QStringLiteral("models"), QJsonArray::fromStringList(ScriptWords::models())},
                       {QStringLiteral("states"), inOrder(ls::StateId::meta)},
                       {QStringLiteral("keys"), inOrder(ls::KeyId::meta, ls::KeyId::Unknown)},
                       {QStringLiteral("services"), inOrder(ls::ServiceId::meta)},
                       {QStringLiteral("commands"),
                        inOrder(ls::KeyboardHandlerCmdId::meta, ls::KeyboardHandlerCmdId::GetKeyList)},
                       {QStringLiteral("actions"), inOrder(ls::KeyActionId::meta)},
                       {QStringLiteral("times"), timesOfKeys()},
                       {QStringLiteral("version"), QStringLiteral(KEYBOARD_HANDLER_VERSION)},
                       {QStringLiteral("held"), keysOf(session.heldKeys())},
                       {QStringLiteral("testing"), session.isTesting()},
                       {QStringLiteral("answering"), session.isAnswering()},
                       {QStringLiteral("formerRecording"), session.hasFormerRecording()},
                       {QStringLiteral("status"), nameOf(session.status())},
                       {QStringLiteral("model"), session.model()},
                       {QStringLiteral("state"), session.state()},
                       {QStringLiteral("recording"), session.isRecording()},
                       {QStringLiteral("replaying"), session.isReplaying()}};
    insertUnlessEmpty(object, "reason", session.reason());
    return object;
}

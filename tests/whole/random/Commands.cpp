// SPDX-License-Identifier: MIT
#include "tests/whole/random/Commands.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

#include <algorithm>

using namespace ls;

namespace {

std::optional<QList<int>> numbersBehindFirst(const QString& line)
{
    const QStringList words = line.simplified().split(QLatin1Char(' ')).mid(1);
    QList<int> numbers;
    for (const QString& word : words) {
        bool ok = false;
        numbers.append(word.toInt(&ok));
        if (!ok) {
            return std::nullopt;
        }
    }
    return numbers;
}

std::optional<QVariantMap> typedCommand(const QString& line)
{
    const auto numbers = numbersBehindFirst(line);
    if (!line.startsWith(QLatin1Char('C'), Qt::CaseInsensitive) || !numbers || numbers->isEmpty()) {
        return std::nullopt;
    }
    const QString name = KeyboardHandlerCmdId::meta.key(numbers->first());
    QVariantMap command{{commandIdKey, name}, {senderIdKey, ServiceId::KeyboardHandler}};
    if (name == KeyboardHandlerCmdId::SimulateKey && numbers->size() == 3) {
        command.insert(actionIdKey, KeyActionId::meta.key(numbers->at(1)));
        command.insert(keyKey, KeyId::meta.key(numbers->at(2)));
        return command;
    }
    const bool isPlain =
        name == KeyboardHandlerCmdId::GetLastKey || name == KeyboardHandlerCmdId::GetLongKeysTimeout;
    return isPlain && numbers->size() == 1 ? std::optional(command) : std::nullopt;
}

bool isKey(const QString& name)
{
    return KeyId::meta.contains(name);
}

QString errorOfKey(const QVariantMap& command)
{
    const QString action = command.value(actionIdKey).toString();
    if (!KeyActionId::meta.contains(action) || !isKey(command.value(keyKey).toString())) {
        return ErrorId::InvalidValue;
    }
    return action == KeyActionId::None ? ErrorId::ServiceError : QString();
}

QString errorOfKeys(const QVariantMap& command)
{
    const QStringList keys = command.value(keysListKey).toStringList();
    const bool isGood = command.contains(keysListKey) && std::all_of(keys.cbegin(), keys.cend(), isKey);
    return isGood ? QString() : ErrorId::InvalidValue;
}

} // namespace

std::optional<QVariantMap> Commands::of(const ScriptStep& step)
{
    if (step.kind == ScriptStep::Kind::Command) {
        return step.command;
    }
    return step.kind == ScriptStep::Kind::Console ? typedCommand(step.text) : std::nullopt;
}

QString Commands::errorOf(const QVariantMap& command)
{
    const QString name = command.value(commandIdKey).toString();
    if (!KeyboardHandlerCmdId::meta.contains(name)) {
        return ErrorId::InvalidCmd;
    }
    if (!ServiceId::meta.contains(command.value(senderIdKey).toString())) {
        return ErrorId::InvalidSender;
    }
    if (name == KeyboardHandlerCmdId::GetKeyList) {
        return ErrorId::CmdNotFound;
    }
    if (name == KeyboardHandlerCmdId::SimulateKey) {
        return errorOfKey(command);
    }
    const bool takesKeys =
        name == KeyboardHandlerCmdId::SimulateModifier || name == KeyboardHandlerCmdId::SimulateShortcut;
    return takesKeys ? errorOfKeys(command) : QString();
}

bool Commands::isAccepted(const QVariantMap& command)
{
    const QString error = errorOf(command);
    return error != ErrorId::InvalidCmd && error != ErrorId::InvalidSender && error != ErrorId::CmdNotFound;
}

bool Commands::succeeds(const QVariantMap& command, const QString& name)
{
    return command.value(commandIdKey).toString() == name && errorOf(command).isEmpty();
}

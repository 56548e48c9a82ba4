// SPDX-License-Identifier: MIT
#include "simulator/script/CommandWords.h"

#include "simulator/script/ScriptWords.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

namespace {

const QString asWord = QStringLiteral("as");

bool takesKeys(const QString& name)
{
    return name == ls::KeyboardHandlerCmdId::SimulateModifier ||
           name == ls::KeyboardHandlerCmdId::SimulateShortcut;
}

QString takeKey(const QStringList& arguments, QVariantMap& command)
{
    if (arguments.size() != 2 || !ls::KeyActionId::meta.contains(arguments.first())) {
        return QStringLiteral("Write it as: command SimulateKey [as SERVICE] ACTION KEY");
    }
    command.insert(ls::actionIdKey, arguments.first());
    command.insert(ls::keyKey, arguments.last());
    return ScriptWords::checkKeys({arguments.last()});
}

QString takeArguments(const QString& name, const QStringList& arguments, QVariantMap& command)
{
    if (name == ls::KeyboardHandlerCmdId::SimulateKey) {
        return takeKey(arguments, command);
    }
    if (takesKeys(name)) {
        command.insert(ls::keysListKey, arguments);
        return ScriptWords::checkKeys(arguments);
    }
    return arguments.isEmpty() ? QString() : name + QStringLiteral(" takes no arguments.");
}

} // namespace

namespace CommandWords {

Parsed parse(const QStringList& words)
{
    const QString name = words.value(0);
    if (!ls::KeyboardHandlerCmdId::meta.contains(name)) {
        return {{}, QStringLiteral("Unknown command \"%1\".").arg(name)};
    }
    const bool senderGiven = words.value(1) == asWord;
    const QString sender = senderGiven ? words.value(2) : ls::ServiceId::ServiceTool;
    const QString fault = ScriptWords::checkService(sender);
    if (!fault.isEmpty()) {
        return {{}, fault};
    }
    QVariantMap command{{ls::commandIdKey, name}, {ls::senderIdKey, sender}};
    const QString argumentFault = takeArguments(name, words.mid(senderGiven ? 3 : 1), command);
    return {command, argumentFault};
}

QStringList wordsOf(const QVariantMap& command)
{
    const QString name = command.value(ls::commandIdKey).toString();
    const QString sender = command.value(ls::senderIdKey).toString();
    QStringList words{name};
    if (sender != ls::ServiceId::ServiceTool) {
        words << asWord << sender;
    }
    if (name == ls::KeyboardHandlerCmdId::SimulateKey) {
        words << command.value(ls::actionIdKey).toString() << command.value(ls::keyKey).toString();
    }
    return words + command.value(ls::keysListKey).toStringList();
}

} // namespace CommandWords

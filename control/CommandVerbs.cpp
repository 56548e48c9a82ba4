// SPDX-License-Identifier: MIT
#include "control/CommandVerbs.h"

#include "control/CommandRun.h"
#include "control/Options.h"
#include "simulator/script/ScriptWords.h"

#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>

namespace control {

namespace {

namespace Cmd = ls::KeyboardHandlerCmdId;

const QString keyParameters = QStringLiteral("KEY...");
const QString testParameters = QStringLiteral("start|result");
const QString senderNote =
    QStringLiteral("The next announcement names the sender of this command as its sender.");

QCommandLineOption senderOption()
{
    return {QStringLiteral("sender"),
            QStringLiteral("The service that sends the command (default: ServiceTool)."),
            QStringLiteral("service"), ls::ServiceId::ServiceTool};
}

QCommandLineOption actionOption()
{
    return {QStringLiteral("action"),
            QStringLiteral("Only this: Pressed, Released or Repeated (default: Pressed, then Released)."),
            QStringLiteral("action")};
}

/// Adds the note and the options that all of these verbs have.
Verb commandVerb(Verb verb)
{
    verb.details = (verb.details + QLatin1Char(' ') + senderNote).trimmed();
    verb.options =
        QList<QCommandLineOption>{Options::prefix(), Options::timeout(), senderOption(), Options::json()} +
        verb.options;
    return verb;
}

/// Sends a list of commands of this sender.
Status send(const Call& call, QVector<QVariantMap> commands)
{
    const QString sender = call.options.value(senderOption().names().first());
    const QString fault = ScriptWords::checkService(sender);
    if (!fault.isEmpty()) {
        return call.complain(Unusable, fault);
    }
    for (QVariantMap& command : commands) {
        command.insert(ls::senderIdKey, sender);
    }
    return sendCommands(call, commands);
}

Status sendPlain(const Call& call, const QStringList& ids)
{
    if (!call.words.isEmpty()) {
        return call.complain(Unusable,
                             QStringLiteral("There is an argument too many: %1.").arg(call.words.first()));
    }
    QVector<QVariantMap> commands;
    for (const QString& id : ids) {
        commands.append({{ls::commandIdKey, id}});
    }
    return send(call, commands);
}

/// Why the words are not keys; otherwise empty.
QString keysFault(const QStringList& words)
{
    return words.isEmpty() ? QStringLiteral("Which keys? Such as Help, or Function Up.")
                           : ScriptWords::checkKeys(words);
}

Status sendKeys(const Call& call, const QString& id)
{
    const QString fault = keysFault(call.words);
    return fault.isEmpty() ? send(call, {{{ls::commandIdKey, id}, {ls::keysListKey, call.words}}})
                           : call.complain(Unusable, fault);
}

Status runSimulate(const Call& call)
{
    const QString action = call.options.value(actionOption().names().first());
    QStringList actions{ls::KeyActionId::Pressed, ls::KeyActionId::Released};
    if (!action.isEmpty()) {
        if (!actions.contains(action) && action != ls::KeyActionId::Repeated) {
            return call.complain(
                Unusable,
                QStringLiteral("The action is Pressed, Released or Repeated, not \"%1\".").arg(action));
        }
        actions = QStringList{action};
    }
    const QString fault = keysFault(call.words);
    if (!fault.isEmpty()) {
        return call.complain(Unusable, fault);
    }
    QVector<QVariantMap> commands;
    for (const QString& key : call.words) {
        for (const QString& each : actions) {
            commands.append(
                {{ls::commandIdKey, Cmd::SimulateKey}, {ls::actionIdKey, each}, {ls::keyKey, key}});
        }
    }
    return send(call, commands);
}

Status runTest(const Call& call)
{
    const QString word = call.words.value(0);
    const bool isStart = word == QLatin1String("start");
    if (!isStart && word != QLatin1String("result")) {
        return call.complain(Unusable, QStringLiteral("Say test start or test result."));
    }
    const Call rest{call.words.mid(1), call.options, call.out, call.err};
    return sendPlain(rest, {isStart ? Cmd::StartTestMode : Cmd::GetTestResult});
}

} // namespace

Verb CommandVerbs::lastKey()
{
    return commandVerb({QStringLiteral("last-key"),
                        {},
                        QStringLiteral("Show the key of the last key event."),
                        QStringLiteral("Events of both devices and simulated keys count."),
                        {QStringLiteral("last-key")},
                        {},
                        [](const Call& call) { return sendPlain(call, {Cmd::GetLastKey}); }});
}

Verb CommandVerbs::times()
{
    return commandVerb({QStringLiteral("times"),
                        {},
                        QStringLiteral("Show how long keys must be held for their long presses."),
                        QStringLiteral("The daemon reports three times the time of Help."),
                        {QStringLiteral("times"), QStringLiteral("times --json")},
                        {},
                        [](const Call& call) { return sendPlain(call, {Cmd::GetLongKeysTimeout}); }});
}

Verb CommandVerbs::lists()
{
    return commandVerb(
        {QStringLiteral("lists"),
         {},
         QStringLiteral("Show the rows of combinations and shortcuts that the daemon has read."),
         {},
         {QStringLiteral("lists"), QStringLiteral("lists --json")},
         {},
         [](const Call& call) {
             return sendPlain(call, {Cmd::GetModifierKeyList, Cmd::GetShortcutKeyList});
         }});
}

Verb CommandVerbs::simulate()
{
    return commandVerb(
        {QStringLiteral("simulate"),
         keyParameters,
         QStringLiteral("Press and release each key as if the first input device had sent it."),
         QStringLiteral(
             "The keys do what the keys of the panel do: they are spoken, announced, and counted in "
             "the keyboard test."),
         {QStringLiteral("simulate Help Ok"), QStringLiteral("simulate Menu --action Pressed")},
         {actionOption()},
         &runSimulate});
}

Verb CommandVerbs::combine()
{
    return commandVerb({QStringLiteral("combine"),
                        keyParameters,
                        QStringLiteral("Pass keys to the recogniser of combinations, in any state."),
                        QStringLiteral("A combination that they begin stays open for the keys of the panel."),
                        {QStringLiteral("combine Help Ok")},
                        {},
                        [](const Call& call) { return sendKeys(call, Cmd::SimulateModifier); }});
}

Verb CommandVerbs::shortcut()
{
    return commandVerb({QStringLiteral("shortcut"),
                        keyParameters,
                        QStringLiteral("Pass keys to the recogniser of shortcuts, in any state."),
                        QStringLiteral("A shortcut that they begin stays open for the keys of the panel."),
                        {QStringLiteral("shortcut Function Up")},
                        {},
                        [](const Call& call) { return sendKeys(call, Cmd::SimulateShortcut); }});
}

Verb CommandVerbs::test()
{
    return commandVerb(
        {QStringLiteral("test"),
         testParameters,
         QStringLiteral("Begin the keyboard test, or show and forget its result."),
         QStringLiteral(
             "In the test, which only the key Ten ends, released keys are named and counted instead of "
             "announced, except in Idle and Startup. The result is how many different keys were released; "
             "asking for it makes the daemon forget it."),
         {QStringLiteral("test start"), QStringLiteral("test result")},
         {},
         &runTest});
}

} // namespace control

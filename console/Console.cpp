// SPDX-License-Identifier: MIT
#include "console/Console.h"

#include "service/KeyboardHandler.h"
#include "vocabulary/Vocabulary.h"

#include <ls/ConsoleReader.h>
#include <ls/Identifiers.h>
#include <ls/MessageKeys.h>
#include <ls/Timer.h>

#include <QLoggingCategory>

#include <algorithm>
#include <optional>
#include <vector>

Q_LOGGING_CATEGORY(consoleCategory, "Console", QtCriticalMsg)

namespace {

using Meta = QMap<QString, int>;

const QString timerName = QStringLiteral("Console");
constexpr int lastOneDigitNumber = 9;

bool startsWith(const QString& line, const char* word)
{
    return line.startsWith(QLatin1String(word), Qt::CaseInsensitive);
}

bool equals(const QString& line, const char* text)
{
    return line.compare(QLatin1String(text), Qt::CaseInsensitive) == 0;
}

/// Empty if `meta` has no such number.
QString identifierOf(const Meta& meta, int number)
{
    return meta.key(number);
}

std::optional<int> toNumber(const QString& word)
{
    bool ok = false;
    const int number = word.toInt(&ok);
    return ok ? std::optional(number) : std::nullopt;
}

void printEmptyLine()
{
    qDebug() << "";
}

/// Prints `text` as an error and an empty line. Returns false, the result of a handler that fails.
bool fail(const char* text)
{
    qCritical() << text;
    printEmptyLine();
    return false;
}

void printGeneralHelp()
{
    qDebug() << "================= Help =================";
    qDebug() << "C [command] [parameter] ...";
    qDebug() << "For displaying all available commands type HELP C";
    qDebug() << "For displaying all available parameters type HELP S";
    qDebug() << "For displaying parameters for a command type HELP [command]";
    qDebug() << "========================================";
}

void printTable(const Meta& meta)
{
    for (const int number : meta) {
        qDebug() << number << (number <= lastOneDigitNumber ? "  " : " ") << identifierOf(meta, number);
    }
}

void printTable(const char* title, const Meta& meta)
{
    qDebug() << title;
    printTable(meta);
    qDebug() << "==============================";
    printEmptyLine();
}

/// A number typed after a command: its key in the command map, and the family that gives its identifier.
struct Parameter
{
    QString key;
    const Meta& meta;
};

/// A command that the console runs; its parameters are typed in this order.
struct Command
{
    ls::EnumKey id;
    const char* description;
    std::vector<Parameter> parameters;
};

/// Null if the console does not run the command.
const Command* findCommand(const ls::EnumKey& id)
{
    static const std::vector<Command> commands{
        {ls::KeyboardHandlerCmdId::GetLastKey, "params: [None]", {}},
        {ls::KeyboardHandlerCmdId::GetLongKeysTimeout, "params: [None]", {}},
        {ls::KeyboardHandlerCmdId::SimulateKey,
         "params: [KeyActionId id] [KeyId id]",
         {{ls::actionIdKey, ls::KeyActionId::meta}, {ls::keyKey, ls::KeyId::meta}}},
    };
    const auto command = std::find_if(commands.cbegin(), commands.cend(),
                                      [&id](const Command& candidate) { return candidate.id == id; });
    return command == commands.cend() ? nullptr : &*command;
}

bool describeCommand(int number)
{
    const Command* command = findCommand(identifierOf(ls::KeyboardHandlerCmdId::meta, number));
    // Deliberate: only the commands that the console can run are described, though all are listed.
    if (!command) {
        return fail("Command not found!");
    }
    qCritical() << command->id << command->description;
    printEmptyLine();
    for (const Parameter& parameter : command->parameters) {
        if (&parameter != &command->parameters.front()) {
            printEmptyLine();
        }
        printTable(parameter.meta);
    }
    return true;
}

bool showHelp(const QString& line)
{
    if (equals(line, "HELP C")) {
        printTable("========== Commands ==========", ls::KeyboardHandlerCmdId::meta);
        return true;
    }
    if (equals(line, "HELP S")) {
        printTable("========== Key States ==========", ls::KeyActionId::meta);
        printTable("========== Keys ==========", ls::KeyId::meta);
        return true;
    }
    const QStringList words = line.split(QLatin1Char(' '));
    if (words.size() < 2) {
        return fail("No arguments received for help.");
    }
    const auto number = toNumber(words.at(1));
    return number ? describeCommand(*number) : fail("Arguments must be of integer type!");
}

void printNotification(const QVariantMap& notification)
{
    if (!notification.contains(ls::notificationIdKey) || !notification.contains(ls::actionIdKey) ||
        !notification.contains(ls::senderIdKey)) {
        // Deliberate: the prefix names a lambda of the constructor; technicians search logs for it.
        vocabulary::logLine("operator()", "Console::Console(KeyboardHandler*)::<lambda(const QVariantMap&)>",
                            "ERROR:")
            << "Invalid notification received!";
        return;
    }
    qCDebug(consoleCategory) << "----------- Notification -----------";
    // Deliberate spelling: technicians search logs for it.
    qCDebug(consoleCategory) << "NotifcationId:" << notification.value(ls::notificationIdKey).toString();
    qCDebug(consoleCategory) << "SenderId:" << notification.value(ls::senderIdKey).toString();
    qCDebug(consoleCategory) << "------------------------------------";
}

} // namespace

Console::Console(KeyboardHandler* handler) : QObject(handler), m_handler(handler)
{
    auto* reader = new ls::ConsoleReader(this);
    connect(reader, &ls::ConsoleReader::textReceived, this, &Console::onTextReceived);
    connect(handler, &KeyboardHandler::notification, handler, printNotification, Qt::DirectConnection);
}

void Console::onTextReceived(const QString& line)
{
    ls::Timer::start(timerName);
    // Deliberate: the start is compared before blanks are removed, so a line with a leading blank is not a
    // command.
    const bool done = (startsWith(line, "HELP") && showHelp(line.simplified())) ||
                      (startsWith(line, "C") && runCommand(line.simplified()));
    if (!done) {
        printGeneralHelp();
    }
    ls::Timer::finish(timerName);
}

bool Console::runCommand(const QString& line)
{
    QStringList words = line.split(QLatin1Char(' '));
    words.removeFirst();
    if (words.isEmpty()) {
        return fail("No arguments received for command action.");
    }
    const auto number = toNumber(words.takeFirst());
    if (!number) {
        return fail("Arguments must be of integer type!");
    }
    if (!std::all_of(words.cbegin(), words.cend(), toNumber)) {
        return fail("Parameters must be of integer type.");
    }
    const ls::EnumKey id = identifierOf(ls::KeyboardHandlerCmdId::meta, *number);
    const Command* command = findCommand(id);
    if (!command) {
        // Deliberate: the wrong-count message below follows as well.
        fail("Command not found!");
    }
    if (!command || int(command->parameters.size()) != words.size()) {
        qCritical() << "Too many/few arguments received for command" << id;
        printEmptyLine();
        return false;
    }
    QVariantMap map{{ls::commandIdKey, id},
                    {ls::subCommandIdKey, QString()},
                    {ls::senderIdKey, ls::ServiceId::KeyboardHandler}};
    for (const Parameter& parameter : command->parameters) {
        map.insert(parameter.key, identifierOf(parameter.meta, *toNumber(words.takeFirst())));
    }
    execute(map);
    return true;
}

void Console::execute(const QVariantMap& command)
{
    qDebug() << "Process command response";
    printEmptyLine();
    qDebug() << m_handler->process(command);
}

// SPDX-License-Identifier: MIT
#include "workbench/terminal/CommandLine.h"

#include "simulator/script/ScriptWords.h"
#include "workbench/terminal/Prompt.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <algorithm>

namespace {

const QString daemonOption = QStringLiteral("daemon");
const QString dataOption = QStringLiteral("data");
const QString recordOption = QStringLiteral("record");
const QString portOption = QStringLiteral("port");
const QString serveOption = QStringLiteral("serve");
const QString noDemoOption = QStringLiteral("no-demo");
const QString modelOption = QStringLiteral("model");
const QString defaultModel = QStringLiteral("Orvane");
const QString defaultPort = QStringLiteral("8765");

void addOptions(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Plays a key script on a simulated embosser and shows what the key daemon does. "
        "At a terminal, the embosser then keeps running and serves a front panel to browsers.\n\n"
        "Status: 0 all results as expected, 1 unexpected results, 2 the script could not be played, "
        "3 wrong arguments."));
    parser.addHelpOption();
    parser.addOptions(
        {{daemonOption, QStringLiteral("The daemon's executable."), QStringLiteral("path"),
          QStringLiteral(KEYBOARD_HANDLER_DAEMON)},
         {dataOption, QStringLiteral("The folder of the key lists."), QStringLiteral("folder"),
          QStringLiteral(KEYBOARD_HANDLER_DATA_FOLDER)},
         {recordOption, QStringLiteral("Record all actions and their results as a key script."),
          QStringLiteral("file")},
         {portOption, QStringLiteral("The local port of the front panel; 0 chooses a free port."),
          QStringLiteral("number"), defaultPort},
         {serveOption,
          QStringLiteral("Keep the embosser and its front panel running even without a terminal.")},
         {noDemoOption, QStringLiteral("Do not play the demonstration.")},
         {modelOption,
          QStringLiteral("The embosser's model, Orvane or Pellit, without a script; a script names its own."),
          QStringLiteral("model"), defaultModel}});
    parser.addPositionalArgument(QStringLiteral("script"), QStringLiteral("The key script (*.keys)."),
                                 QStringLiteral("[script]"));
}

/// Unlike QString::toUShort(), rejects blanks and signs.
std::optional<quint16> portOf(const QString& word)
{
    const bool isDigits =
        std::all_of(word.begin(), word.end(), [](QChar character) { return character.isDigit(); });
    bool isPort = false;
    const quint16 port = word.toUShort(&isPort);
    return isDigits && isPort ? std::optional(port) : std::nullopt;
}

std::nullopt_t refuse(const QString& sentence)
{
    QTextStream(stderr) << sentence << '\n';
    return std::nullopt;
}

} // namespace

std::optional<CommandLine> CommandLine::read(const QCoreApplication& application)
{
    QCommandLineParser parser;
    addOptions(parser);
    if (!parser.parse(application.arguments())) {
        return refuse(parser.errorText() + QStringLiteral("\n--help lists the options."));
    }
    parser.process(application); // exits after printing requested help
    const QStringList scripts = parser.positionalArguments();
    if (scripts.size() > 1) {
        return refuse(QStringLiteral("Only one key script can be played, not %1.").arg(scripts.size()));
    }
    CommandLine line;
    const QString demonstration =
        parser.isSet(noDemoOption) ? QString() : QStringLiteral(DEMONSTRATION_SCRIPT);
    line.script = scripts.value(0, demonstration);
    if (parser.isSet(modelOption) && !line.script.isEmpty()) {
        return refuse(QStringLiteral(
            "--model requires --no-demo and no script, because a script names its own model."));
    }
    line.device.model = parser.value(modelOption);
    if (const QString fault = ScriptWords::checkModel(line.device.model); !fault.isEmpty()) {
        return refuse(fault);
    }
    line.device.daemon = parser.value(daemonOption);
    line.device.keyListFolder = parser.value(dataOption);
    line.recording = parser.value(recordOption);
    line.serve = parser.isSet(serveOption) || Prompt::isAtTerminal();
    const std::optional<quint16> port = portOf(parser.value(portOption));
    if (!port) {
        return refuse(QStringLiteral("\"%1\" is not a port number.").arg(parser.value(portOption)));
    }
    line.port = *port;
    if (line.script.isEmpty() && !line.serve) {
        return refuse(QStringLiteral("Nothing to do: name a key script or add --serve."));
    }
    return line;
}

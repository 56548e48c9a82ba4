// SPDX-License-Identifier: MIT
#include "control/Program.h"

#include "control/Options.h"
#include "control/Verbs.h"

#include <algorithm>

namespace control {

namespace {

const QString programName = QStringLiteral("keyboard-handlerctl");

QString usageOf(const Verb& verb)
{
    return (verb.name + QLatin1Char(' ') + verb.parameters).trimmed();
}

QString generalHelp()
{
    constexpr int width = 24;
    QString text = QStringLiteral("Usage: %1 VERB [WORD...] [OPTION...]\n\nVerbs:\n").arg(programName);
    for (const Verb& verb : verbs()) {
        text += QStringLiteral("  %1 %2\n").arg(usageOf(verb), -width).arg(verb.summary);
    }
    return text + QStringLiteral("\n%1 VERB --help shows the options of a verb.").arg(programName);
}

QString helpOf(const Verb& verb, const QCommandLineParser& parser)
{
    // The parser writes the options before the name of the verb, where they do not work.
    const QString text = parser.helpText();
    QString help = QStringLiteral("Usage: %1 %2 [OPTION...]").arg(programName, usageOf(verb)) +
                   text.mid(text.indexOf(QLatin1Char('\n')));
    help += QStringLiteral("\nExamples:\n");
    for (const QString& example : verb.examples) {
        help += QStringLiteral("  %1 %2\n").arg(programName, example);
    }
    return help;
}

Status runVerb(const Verb& verb, const QStringList& line, Output& out, Output& err)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(verb.summary +
                                     (verb.details.isEmpty() ? QString() : QLatin1Char(' ') + verb.details));
    parser.addOptions(verb.options);
    const QCommandLineOption help = Options::help();
    parser.addOption(help);
    if (!parser.parse(QStringList{programName} + line)) {
        err.line(parser.errorText());
        return Unusable;
    }
    if (parser.isSet(help)) {
        out.lines(helpOf(verb, parser));
        return Done;
    }
    return verb.run({parser.positionalArguments(), parser, out, err});
}

Status runLine(const QStringList& line, Output& out, Output& err)
{
    const QString name = line.value(0);
    if (name == QLatin1String("--help") || name == QLatin1String("-h")) {
        out.lines(generalHelp());
        return Done;
    }
    const auto verb =
        std::find_if(verbs().begin(), verbs().end(), [&](const Verb& each) { return each.name == name; });
    if (verb != verbs().end()) {
        return runVerb(*verb, line.mid(1), out, err);
    }
    line.isEmpty() ? err.lines(generalHelp())
                   : err.line(QStringLiteral("\"%1\" is not a verb; --help lists them.").arg(name));
    return Unusable;
}

} // namespace

Status run(const QStringList& line, Output& out, Output& err)
{
    const Status status = runLine(line, out, err);
    if (!out.isBroken()) {
        return status;
    }
    err.line(QStringLiteral("The output could not be written."));
    return Unusable;
}

} // namespace control

// SPDX-License-Identifier: MIT
#include "checker/HelpText.h"

namespace checker {

QCommandLineOption HelpText::option()
{
    return {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Show this help.")};
}

QString HelpText::of(const QCommandLineParser& parser, const QString& usage)
{
    // The parser writes the options before the name of the subcommand, where they do not work.
    const QString text = parser.helpText();
    return QStringLiteral("Usage: keyboard-handler-keys ") + usage +
           text.mid(text.indexOf(QLatin1Char('\n')));
}

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include <QCommandLineParser>

namespace checker {

/// The text of `--help` of a subcommand.
namespace HelpText {

/// The option itself. That of the parser would add options of Qt, which subcommands do not have.
QCommandLineOption option();
/// The parser's text with the usage of a subcommand: its name and its arguments.
QString of(const QCommandLineParser& parser, const QString& usage);

} // namespace HelpText

} // namespace checker

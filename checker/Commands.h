// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>
#include <QTextStream>

namespace checker {

/// The exit statuses of the program. The first that applies, in this order: `Unusable`, `Found`, `NotProved`.
enum Status {
    Clean = 0,
    /// Errors, denied warnings, or differences.
    Found = 1,
    /// Files or arguments that cannot be used.
    Unusable = 2,
    NotProved = 3,
};

/// The subcommands. `arguments` begins with the name of the subcommand. Results go to `out`, complaints about
/// arguments and files to `err`.
namespace Commands {

Status card(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status check(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status explain(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status how(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status what(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status diff(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status why(const QStringList& arguments, QTextStream& out, QTextStream& err);
Status schema(const QStringList& arguments, QTextStream& out, QTextStream& err);

} // namespace Commands

} // namespace checker

// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

/// Runs other programs to completion.
namespace Command {

struct Result
{
    /// -1 if the program could not be run or did not end.
    int status = -1;
    /// Standard output and standard error.
    QString output;
};

Result run(const QString& program, const QStringList& arguments = {});
/// Runs a line of the shell.
Result shell(const QString& line);

} // namespace Command

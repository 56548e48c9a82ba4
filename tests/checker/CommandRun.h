// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Commands.h"

/// One call of a subcommand.
struct CommandRun
{
    using Command = checker::Status (*)(const QStringList&, QTextStream&, QTextStream&);

    CommandRun(Command command, const QStringList& arguments)
    {
        QTextStream outStream(&out);
        QTextStream errStream(&err);
        status = command(arguments, outStream, errStream);
    }

    QStringList lines() const { return out.split('\n', Qt::SkipEmptyParts); }

    int status = -1;
    QString out;
    QString err;
};

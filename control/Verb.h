// SPDX-License-Identifier: MIT
#pragma once

#include "control/Output.h"
#include "control/Status.h"

#include <QCommandLineOption>
#include <QCommandLineParser>
#include <QStringList>

namespace control {

/// The rest of a command line, after its verb, and where the answer goes.
struct Call
{
    /// The words that are not options.
    QStringList words;
    const QCommandLineParser& options;
    /// What the verb is asked for.
    Output& out;
    /// Complaints, a line each.
    Output& err;

    /// Writes the complaint, and returns the status.
    Status complain(Status status, const QString& text) const
    {
        err.line(text);
        return status;
    }
};

/// What the program can be asked for: keyboard-handlerctl NAME PARAMETERS.
struct Verb
{
    QString name;
    /// As the help writes them, such as "KEY..."; empty if the verb takes none. The verb checks the words.
    QString parameters;
    /// One sentence, for the list of verbs.
    QString summary;
    /// What else the help says, such as what the verb changes besides its answer.
    QString details;
    /// Without the name of the program.
    QStringList examples;
    /// All but --help.
    QList<QCommandLineOption> options;
    Status (*run)(const Call& call);
};

} // namespace control

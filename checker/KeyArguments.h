// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Commands.h"
#include "model/Alphabet.h"

#include <QCommandLineParser>

#include <optional>

namespace checker {

/// The command line of the subcommands that play keys: SUBJECT [--state STATE] [--model MODEL] [PATH...].
class KeyArguments
{
public:
    /// `command` is the name of the subcommand, `subject` that of its first argument.
    KeyArguments(const QString& command, const QString& subject, const QString& description);
    /// Must come before `read`.
    void addOption(const QCommandLineOption& option) { m_parser.addOption(option); }

    /// Returns the status with which the subcommand must end at once: after the help, which goes to `out`,
    /// and after a complaint about the arguments, which goes to `err`.
    std::optional<Status> read(const QStringList& arguments, QTextStream& out, QTextStream& err);

    /// These are valid only after `read` has returned nothing.
    QString subject() const { return m_parser.positionalArguments().value(0); }
    /// The files and folders of the key lists; empty if none are named.
    QStringList paths() const { return m_parser.positionalArguments().mid(1); }
    std::optional<model::State> state() const;
    bool hasModel() const;
    bool isOrvane() const;
    bool isSet(const QString& option) const { return m_parser.isSet(option); }
    QString value(const QString& option) const { return m_parser.value(option); }

private:
    QString fault(const QStringList& arguments);

    QString m_usage;
    QString m_subject;
    QCommandLineParser m_parser;
};

} // namespace checker

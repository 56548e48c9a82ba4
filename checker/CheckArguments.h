// SPDX-License-Identifier: MIT
#pragma once

#include "checker/Check.h"

#include <QString>
#include <QStringList>

namespace checker {

/// The arguments of the subcommand `check`.
struct CheckArguments
{
    enum class Format { Text, Lines, Json, Sarif };

    QStringList paths;
    CheckOptions options;
    Format format = Format::Text;
    /// Whether warnings count as errors.
    bool deniesWarnings = false;
    /// The folder for the key scripts that announce each row; empty if they are not wanted.
    QString witnessFolder;
    /// Whether to mend what has one safe mend.
    bool mends = false;
    /// The text of `--help`; empty if it is not wanted.
    QString help;
    /// Why the arguments cannot be used; empty if they can.
    QString fault;

    /// `arguments` begins with the name of the subcommand.
    static CheckArguments parse(const QStringList& arguments);

    /// A sentence about the first action of `allowed` that no row has; empty if all are there.
    QString checkActions(const model::KeyLists& lists) const;
};

} // namespace checker

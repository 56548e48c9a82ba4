// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/script/KeyScript.h"

namespace checker {

/// A key script from the command line that the model can play.
struct ScriptArgument
{
    KeyScript script;
    /// The file; empty for statements.
    QString path;
    /// Sentences about why it cannot be played; empty if it can. They quote the script: print them with
    /// `printable`.
    QStringList faults;

    /// Statements without a header, separated by newlines or semicolons.
    static ScriptArgument ofStatements(const QString& text);
    /// The script in the file of this name, which ends with ".keys", or statements.
    static ScriptArgument ofFileOrStatements(const QString& text);
};

} // namespace checker

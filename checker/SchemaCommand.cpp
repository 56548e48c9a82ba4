// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/KeyListSchema.h"

namespace checker {

Status Commands::schema(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    if (arguments.size() > 1) {
        const bool asksForHelp = arguments == QStringList{arguments.first(), QStringLiteral("--help")};
        (asksForHelp ? out : err) << "Usage: keyboard-handler-keys schema\n";
        return asksForHelp ? Clean : Unusable;
    }
    out << QString::fromUtf8(KeyListSchema::text());
    return Clean;
}

} // namespace checker

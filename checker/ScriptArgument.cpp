// SPDX-License-Identifier: MIT
#include "checker/ScriptArgument.h"

#include "checker/ScriptPlayback.h"
#include "simulator/script/KeyScriptText.h"

namespace checker {

namespace {

ScriptArgument argumentOf(const ParsedScript& parsed, const QString& path)
{
    ScriptArgument argument{parsed.script, path, {}};
    for (const ScriptFault& fault : parsed.faults) {
        const QString place = path.isEmpty() ? QStringLiteral("Statement ") : path + QLatin1Char(':');
        argument.faults << place + QString::number(fault.line) + QStringLiteral(": ") + fault.text;
    }
    const QString unknown = ScriptPlayback::unknownStatement(parsed.script);
    if (argument.faults.isEmpty() && !unknown.isEmpty()) {
        argument.faults << unknown;
    }
    return argument;
}

} // namespace

ScriptArgument ScriptArgument::ofStatements(const QString& text)
{
    QString lines = text;
    lines.replace(QLatin1Char(';'), QLatin1Char('\n'));
    return argumentOf(parseKeyScriptSteps(lines), {});
}

ScriptArgument ScriptArgument::ofFileOrStatements(const QString& text)
{
    const bool isFile = text.endsWith(QLatin1String(".keys"));
    return isFile ? argumentOf(loadKeyScript(text), text) : ofStatements(text);
}

} // namespace checker

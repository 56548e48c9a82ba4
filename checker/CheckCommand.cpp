// SPDX-License-Identifier: MIT
#include "checker/CheckArguments.h"
#include "checker/Commands.h"
#include "checker/FindingJson.h"
#include "checker/FindingSarif.h"
#include "checker/FindingText.h"
#include "checker/Printable.h"
#include "checker/WitnessFiles.h"

#include <algorithm>

namespace checker {

namespace {

void leaveOut(QVector<Finding>& findings, const QStringList& ids)
{
    const auto isAllowed = [&](const Finding& finding) { return ids.contains(finding.id); };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isAllowed), findings.end());
}

Status statusOf(const CheckResult& result, bool deniesWarnings)
{
    const Level least = deniesWarnings ? Level::Warning : Level::Error;
    const bool isFound = std::any_of(result.findings.begin(), result.findings.end(),
                                     [least](const Finding& finding) { return finding.level >= least; });
    return isFound ? Found : result.isProved ? Clean : NotProved;
}

void printText(const ListSources& sources, const CheckResult& result, QTextStream& out)
{
    const FindingText text(sources, hasColours());
    for (const QString& note : sources.notes) {
        out << "note: " << printable(note) << '\n';
    }
    for (const Finding& finding : result.findings) {
        out << text.describe(finding);
    }
    out << text.summary(result);
}

void print(CheckArguments::Format format, const ListSources& sources, const CheckResult& result,
           QTextStream& out)
{
    switch (format) {
    case CheckArguments::Format::Text:
        printText(sources, result, out);
        break;
    case CheckArguments::Format::Json:
        out << QString::fromUtf8(FindingJson::of(result, sources));
        break;
    case CheckArguments::Format::Sarif:
        out << QString::fromUtf8(FindingSarif::of(result, sources));
        break;
    }
}

} // namespace

Status Commands::check(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    const CheckArguments line = CheckArguments::parse(arguments);
    if (!line.fault.isEmpty() || !line.help.isEmpty()) {
        (line.fault.isEmpty() ? out : err)
            << (line.fault.isEmpty() ? line.help : printable(line.fault) + QLatin1Char('\n'));
        return line.fault.isEmpty() ? Clean : Unusable;
    }
    const ListSources sources = ListSources::read(line.paths);
    if (!sources.fault.isEmpty()) {
        err << printable(sources.fault) << '\n';
        return Unusable;
    }
    CheckResult result = checker::check(sources, line.options);
    leaveOut(result.findings, line.allowed);
    print(line.format, sources, result, out);
    if (!line.witnessFolder.isEmpty()) {
        const QString fault = WitnessFiles::write(sources, line.options, line.witnessFolder);
        if (!fault.isEmpty()) {
            err << printable(fault) << '\n';
            return Unusable;
        }
    }
    return statusOf(result, line.deniesWarnings);
}

} // namespace checker

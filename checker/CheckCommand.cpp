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

void leaveOut(QVector<Finding>& findings, const model::KeyLists& lists, const QStringList& allowed)
{
    const auto isAllowed = [&](const Finding& finding) {
        const QString action = finding.row.index < 0 ? QString() : lists.row(finding.row).eAction();
        return allowed.contains(finding.id) || allowed.contains(finding.id + QLatin1Char(':') + action);
    };
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
        out << printableJson(FindingJson::of(result, sources));
        break;
    case CheckArguments::Format::Sarif:
        out << printableJson(FindingSarif::of(result, sources));
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
    leaveOut(result.findings, sources.lists(line.options.isOrvane.value_or(false)), line.allowed);
    const bool isText = line.format == CheckArguments::Format::Text;
    for (const QString& note : sources.notes) {
        (isText ? out : err) << "note: " << printable(note) << '\n';
    }
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

// SPDX-License-Identifier: MIT
#include "checker/CheckArguments.h"
#include "checker/Commands.h"
#include "checker/FindingJson.h"
#include "checker/FindingSarif.h"
#include "checker/FindingText.h"
#include "checker/MendedFiles.h"
#include "checker/Mending.h"
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

/// Why the files could not be written; empty if they were.
QString replaceFiles(const Mending& mending)
{
    QVector<SourceFile> files;
    const QVector<model::List> changed = mending.changed();
    for (const model::List list : changed) {
        files.append(mending.sources().file(list));
    }
    return MendedFiles::replace(files);
}

void print(const Mending& mending, QTextStream& out)
{
    const QStringList lines = mending.made() + mending.refused();
    for (const QString& line : lines) {
        out << printable(line) << '\n';
    }
    out << (lines.isEmpty() ? "" : "\n");
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
    ListSources sources = ListSources::read(line.paths);
    if (!sources.fault.isEmpty()) {
        err << printable(sources.fault) << '\n';
        return Unusable;
    }
    const auto findAll = [&line](const ListSources& lists) {
        CheckResult result = checker::check(lists, line.options);
        leaveOut(result.findings, lists.lists(line.options.isOrvane.value_or(false)), line.allowed);
        return result;
    };
    const bool isText = line.format == CheckArguments::Format::Text;
    CheckResult result;
    if (line.mends) {
        const Mending mending(sources, findAll);
        const QString fault = replaceFiles(mending);
        if (!fault.isEmpty()) {
            err << printable(fault) << '\n';
            return Unusable;
        }
        print(mending, isText ? out : err);
        sources = mending.sources();
        result = mending.result();
    } else {
        result = findAll(sources);
    }
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

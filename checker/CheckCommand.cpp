// SPDX-License-Identifier: MIT
#include "checker/CheckArguments.h"
#include "checker/Commands.h"
#include "checker/FindingJson.h"
#include "checker/FindingLines.h"
#include "checker/FindingSarif.h"
#include "checker/FindingText.h"
#include "checker/MendedFiles.h"
#include "checker/Mending.h"
#include "checker/Printable.h"
#include "checker/SearchWords.h"
#include "checker/WitnessFiles.h"

#include <algorithm>

namespace checker {

namespace {

Status statusOf(const CheckResult& result, bool deniesWarnings)
{
    const Level least = deniesWarnings ? Level::Warning : Level::Error;
    const bool isFound = std::any_of(result.findings.begin(), result.findings.end(),
                                     [least](const Finding& finding) { return finding.level >= least; });
    return isFound ? Found : result.isProved ? Clean : NotProved;
}

/// More would take minutes to print.
constexpr int maxAlike = 1000;

void print(CheckArguments::Format format, const ListSources& sources, const CheckResult& result,
           QTextStream& out)
{
    const FindingText text(sources, hasColours());
    switch (format) {
    case CheckArguments::Format::Text:
        for (const Finding& finding : result.findings) {
            out << text.describe(finding);
        }
        break;
    case CheckArguments::Format::Lines:
        for (const Finding& finding : result.findings) {
            out << FindingLines::of(finding, sources);
        }
        break;
    case CheckArguments::Format::Json:
        out << printableJson(FindingJson::of(result, sources));
        break;
    case CheckArguments::Format::Sarif:
        out << printableJson(FindingSarif::of(result, sources));
        break;
    }
}

/// A complaint about an action of --allow that no row has. The row may be in a list that cannot be read.
QString unknownActionIn(const CheckArguments& line, const ListSources& sources)
{
    const model::KeyLists lists = sources.lists(line.options.isOrvane.value_or(false));
    const bool areReadable = std::none_of(sources.found.begin(), sources.found.end(),
                                          [&](model::List list) { return lists.unreadable.contains(list); });
    return areReadable ? line.checkActions(lists) : QString();
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
    const QString unknownAction = unknownActionIn(line, sources);
    if (!unknownAction.isEmpty()) {
        err << printable(unknownAction) << '\n';
        return Unusable;
    }
    const auto findAll = [&line](const ListSources& lists) { return checker::check(lists, line.options); };
    const bool isText =
        line.format == CheckArguments::Format::Text || line.format == CheckArguments::Format::Lines;
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
    const CheckResult shown = firstOfEachKind(result, maxAlike);
    print(line.format, sources, shown, out);
    if (const int others = result.findings.size() - shown.findings.size()) {
        (isText ? out : err) << QStringLiteral(
                                    "note: of each kind, the first %1 findings are shown; left out: %2\n")
                                    .arg(SearchWords::grouped(maxAlike),
                                         SearchWords::grouped(quint64(others)));
    }
    if (isText) {
        out << FindingText(sources, hasColours()).summary(result);
    }
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

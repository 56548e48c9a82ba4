// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/DifferenceReport.h"
#include "checker/HelpText.h"
#include "checker/ListSources.h"
#include "checker/Printable.h"

#include <QCommandLineParser>

namespace checker {

namespace {

/// The arguments of `diff`.
struct DiffArguments
{
    QStringList paths;
    bool forServices = false;
    bool isOrvane = false;
    QString format;
    QString help;
    QString fault;

    static DiffArguments parse(const QStringList& arguments);
};

QStringList formats()
{
    return {QStringLiteral("text"), QStringLiteral("json"), QStringLiteral("html")};
}

DiffArguments DiffArguments::parse(const QStringList& arguments)
{
    const QCommandLineOption whom(QStringLiteral("for"),
                                  QStringLiteral("Compare speech and actions (users), or actions only "
                                                 "(services). Without this option, users."),
                                  QStringLiteral("whom"), QStringLiteral("users"));
    const QCommandLineOption embosser(QStringLiteral("model"),
                                      QStringLiteral("The embosser model: Pellit or Orvane. Without this "
                                                     "option, Pellit."),
                                      QStringLiteral("model"), QStringLiteral("Pellit"));
    const QCommandLineOption format(QStringLiteral("format"),
                                    QStringLiteral("The output: text, json or html. Without this option, "
                                                   "text."),
                                    QStringLiteral("format"), QStringLiteral("text"));
    const QCommandLineOption help = HelpText::option();
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows what keys do with one folder of key lists and not with another. For both, a "
                       "person presses keys of the panel with two fingers, and the state changes at most "
                       "once."));
    parser.addPositionalArgument(QStringLiteral("old"),
                                 QStringLiteral("A folder with key lists, or a file."));
    parser.addPositionalArgument(QStringLiteral("new"), QStringLiteral("Another one."));
    parser.addOptions({whom, embosser, format, help});
    DiffArguments result;
    const bool isParsed = parser.parse(arguments);
    result.paths = parser.positionalArguments();
    result.forServices = parser.value(whom) == QLatin1String("services");
    result.isOrvane = parser.value(embosser) == QLatin1String("Orvane");
    result.format = parser.value(format);
    result.help = isParsed && parser.isSet(help)
                      ? HelpText::of(parser, QStringLiteral("diff [option...] OLD NEW"))
                      : QString();
    if (!isParsed) {
        result.fault = parser.errorText();
    } else if (result.paths.size() != 2) {
        result.fault = QStringLiteral("Two folders or files are needed: the old and the new one.");
    } else if (!result.forServices && parser.value(whom) != QLatin1String("users")) {
        result.fault = QStringLiteral("--for must be users or services, not \"%1\".").arg(parser.value(whom));
    } else if (!result.isOrvane && parser.value(embosser) != QLatin1String("Pellit")) {
        result.fault =
            QStringLiteral("The model must be Pellit or Orvane, not \"%1\".").arg(parser.value(embosser));
    } else if (!formats().contains(result.format)) {
        result.fault = QStringLiteral("--format must be text, json or html, not \"%1\".").arg(result.format);
    }
    return result;
}

/// Says which lists count as empty.
void printNotes(const QString& path, const ListSources& sources, QTextStream& err)
{
    const QStringList remarks = sources.remarks();
    for (const QString& note : remarks) {
        err << "note: " << printable(path) << ": " << printable(note) << '\n';
    }
}

} // namespace

Status Commands::diff(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    const DiffArguments line = DiffArguments::parse(arguments);
    if (!line.help.isEmpty()) {
        out << line.help;
        return Clean;
    }
    if (!line.fault.isEmpty()) {
        err << printable(line.fault) << '\n';
        return Unusable;
    }
    const ListSources oldSources = ListSources::read(line.paths.mid(0, 1));
    const ListSources newSources = ListSources::read(line.paths.mid(1, 1));
    for (const QString& fault : {oldSources.fault, newSources.fault}) {
        if (!fault.isEmpty()) {
            err << printable(fault) << '\n';
            return Unusable;
        }
    }
    printNotes(line.paths.first(), oldSources, err);
    printNotes(line.paths.last(), newSources, err);
    const ComparedLists compared{line.paths.first(),
                                 line.paths.last(),
                                 oldSources.lists(line.isOrvane),
                                 newSources.lists(line.isOrvane),
                                 PlacesOf::rowsIn(oldSources),
                                 PlacesOf::rowsIn(newSources),
                                 line.forServices};
    const DifferenceReport report(compared);
    out << (line.format == QLatin1String("json")   ? QString::fromUtf8(report.json())
            : line.format == QLatin1String("html") ? report.html()
                                                   : report.text());
    return report.hasDifferences() ? Found : report.isProved() ? Clean : NotProved;
}

} // namespace checker

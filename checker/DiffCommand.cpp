// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/ListSources.h"
#include "checker/OutputWords.h"
#include "checker/Printable.h"
#include "checker/RunWords.h"
#include "checker/SearchWords.h"
#include "model/ListComparison.h"

#include <QCommandLineParser>

namespace checker {

using model::Difference;
using model::Environment;
using model::Output;

namespace {

/// The arguments of `diff`.
struct DiffArguments
{
    QStringList paths;
    bool forServices = false;
    bool isOrvane = false;
    QString help;
    QString fault;

    static DiffArguments parse(const QStringList& arguments);
};

DiffArguments DiffArguments::parse(const QStringList& arguments)
{
    const QCommandLineOption whom(
        QStringLiteral("for"),
        QStringLiteral("Compare speech and actions (users) or actions only (services)."),
        QStringLiteral("whom"), QStringLiteral("users"));
    const QCommandLineOption embosser(QStringLiteral("model"),
                                      QStringLiteral("The embosser model: Pellit or Orvane."),
                                      QStringLiteral("model"), QStringLiteral("Pellit"));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows what keys do with one folder of key lists and not with another."));
    parser.addPositionalArgument(QStringLiteral("old"),
                                 QStringLiteral("A folder with key lists, or a file."));
    parser.addPositionalArgument(QStringLiteral("new"), QStringLiteral("Another one."));
    parser.addOptions({whom, embosser, help});
    DiffArguments result;
    const bool isParsed = parser.parse(arguments);
    result.paths = parser.positionalArguments();
    result.forServices = parser.value(whom) == QLatin1String("services");
    result.isOrvane = parser.value(embosser) == QLatin1String("Orvane");
    result.help = isParsed && parser.isSet(help) ? parser.helpText() : QString();
    if (!isParsed) {
        result.fault = parser.errorText();
    } else if (result.paths.size() != 2) {
        result.fault = QStringLiteral("Two folders or files are needed: the old and the new one.");
    } else if (!result.forServices && parser.value(whom) != QLatin1String("users")) {
        result.fault = QStringLiteral("--for must be users or services, not \"%1\".").arg(parser.value(whom));
    } else if (!result.isOrvane && parser.value(embosser) != QLatin1String("Pellit")) {
        result.fault =
            QStringLiteral("The model must be Pellit or Orvane, not \"%1\".").arg(parser.value(embosser));
    }
    return result;
}

bool isForUsers(const Output& output)
{
    return output.kind == Output::Kind::Speak || output.kind == Output::Kind::Announce;
}

bool isForServices(const Output& output)
{
    return output.kind == Output::Kind::Announce;
}

QString textOf(const QVector<Output>& outputs)
{
    QStringList texts;
    for (const Output& output : outputs) {
        texts.append(OutputWords::of(output));
    }
    return texts.isEmpty() ? QStringLiteral("nothing") : texts.join(QStringLiteral("; "));
}

void print(const Difference& difference, QTextStream& out)
{
    out << printable(QStringLiteral("%1: %2").arg(model::Alphabet::nameOf(difference.state),
                                                  RunWords::of(difference.oldSteps, difference.end)))
        << '\n'
        << "    was " << printable(textOf(difference.oldOutputs)) << '\n'
        << "    now " << printable(textOf(difference.newOutputs)) << '\n';
}

/// Says which lists count as empty.
void printNotes(const QString& path, const ListSources& sources, QTextStream& err)
{
    const QStringList remarks = sources.remarks();
    for (const QString& note : remarks) {
        err << "note: " << printable(path) << ": " << printable(note) << '\n';
    }
}

/// Searching two lists at once takes longer than one.
constexpr model::Limits pairLimits{300'000, 10'000'000};

Environment personAtOneDevice()
{
    Environment environment;
    environment.kind = Environment::Kind::Person;
    environment.devices = 1;
    environment.panelKeysOnly = true;
    environment.stateChanges = false;
    environment.keyboardTest = false;
    return environment;
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
    model::ListComparison comparison(oldSources.lists(line.isOrvane), newSources.lists(line.isOrvane),
                                     line.forServices ? isForServices : isForUsers);
    const QVector<Difference> differences = comparison.find(personAtOneDevice(), pairLimits);
    for (const Difference& difference : differences) {
        print(difference, out);
    }
    const model::Proof& proof = comparison.proof();
    out << (!proof.isComplete       ? "Not proved: the search ended at its limit, "
            : differences.isEmpty() ? "No difference: proved, "
                                    : "Searched to the end, ")
        << SearchWords::extentOf(proof) << ".\n";
    return !differences.isEmpty() ? Found : proof.isComplete ? Clean : NotProved;
}

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/HowAnswer.h"
#include "checker/KeyArguments.h"
#include "checker/Printable.h"
#include "checker/Suggestion.h"

namespace checker {

namespace {

const QString rowsOption = QStringLiteral("rows");

void print(const HowAnswer& answer, QTextStream& out)
{
    bool isFirst = true;
    for (const QStringList& lines : answer.paragraphs) {
        out << (isFirst ? "" : "\n");
        isFirst = false;
        for (const QString& line : lines) {
            out << printable(line) << '\n';
        }
    }
}

QString unknown(const QString& action, const QStringList& known)
{
    return QStringLiteral("Unknown action \"") + action + QLatin1Char('"') +
           Suggestion::question(action, known) + QStringLiteral("; known actions: ") +
           known.join(QStringLiteral(", ")) + QLatin1Char('.');
}

Status statusOf(const HowAnswer& answer)
{
    if (!answer.isProved) {
        return NotProved;
    }
    return answer.isAnnounced ? Clean : Found;
}

} // namespace

Status Commands::how(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    KeyArguments line(
        QStringLiteral("how"), QStringLiteral("ACTION"),
        QStringLiteral("Says how keys announce an action: the shortest way for each row that has "
                       "it, in words and as a key script."));
    line.addOption({rowsOption, QStringLiteral("Write the rows of the key lists into each script.")});
    if (const auto status = line.read(arguments, out, err)) {
        return *status;
    }
    const ListSources sources = ListSources::read(line.paths());
    if (!sources.fault.isEmpty()) {
        err << printable(sources.fault) << '\n';
        return Unusable;
    }
    const QStringList remarks = sources.remarks();
    for (const QString& note : remarks) {
        err << "note: " << printable(note) << '\n';
    }
    const auto rows = line.isSet(rowsOption) ? std::optional(ScriptRows::of(sources)) : std::nullopt;
    const model::KeyLists lists = sources.lists(line.isOrvane());
    const QStringList known = HowAnswer::actionsOf(lists);
    if (!known.contains(line.subject())) {
        err << printable(unknown(line.subject(), known)) << '\n';
        return Unusable;
    }
    const HowAnswer answer =
        HowAnswer::of(line.subject(), lists, line.state(), PlacesOf::rowsIn(sources), rows);
    print(answer, out);
    if (answer.isAnnounced && !rows && !line.paths().isEmpty()) {
        out << "\n# The scripts need these key lists: keyboard-handler-simulator --data FOLDER; with --rows, "
               "each "
               "script contains the rows.\n";
    }
    return statusOf(answer);
}

} // namespace checker

// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/KeyArguments.h"
#include "checker/Printable.h"
#include "checker/ScriptArgument.h"
#include "checker/WhyAnswer.h"
#include "model/KeyFacts.h"
#include "simulator/script/KeyListJson.h"

namespace checker {

namespace {

const QString atOption = QStringLiteral("at");

/// The time of --at; `fault` gets a sentence if it is not a time.
std::optional<std::chrono::milliseconds> timeOf(const QString& word, QString& fault)
{
    constexpr double maxSeconds = 1e9;
    bool isNumber = false;
    const double seconds = word.toDouble(&isNumber);
    if (word.isEmpty()) {
        return std::nullopt;
    }
    if (!isNumber || !(seconds >= 0 && seconds <= maxSeconds)) {
        fault = QStringLiteral("\"%1\" is not a time in seconds.").arg(word);
        return std::nullopt;
    }
    return std::chrono::milliseconds(qRound64(seconds * 1000));
}

/// What is played: a script's header decides before the command line.
struct Played
{
    KeyScript script;
    model::KeyLists lists;
    PlaceOf placeOf;
};

Played playedOf(const ScriptArgument& argument, const ListSources& sources, const KeyArguments& line)
{
    Played played{argument.script, {}, {}};
    if (argument.path.isEmpty() || line.state()) {
        played.script.initialState = model::Alphabet::nameOf(line.state().value_or(model::KeyFacts::idle));
    }
    const bool isOrvane = line.hasModel() || argument.path.isEmpty()
                              ? line.isOrvane()
                              : argument.script.model == QLatin1String("Orvane");
    const bool hasRows = !argument.script.rows.isEmpty();
    played.lists = hasRows ? model::KeyLists::read(KeyListJson::filesOf(argument.script), isOrvane)
                           : sources.lists(isOrvane);
    played.placeOf = hasRows ? PlacesOf::rowsInScript(argument.path) : PlacesOf::rowsIn(sources);
    return played;
}

} // namespace

Status Commands::why(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    KeyArguments line(
        QStringLiteral("why"), QStringLiteral("SCRIPT"),
        QStringLiteral("Says which rule decided about each key of a key script: a file whose name "
                       "ends with .keys, or statements such as 'tap Help Feed'. Rows, state and "
                       "model in a file count, unless options name others."));
    line.addOption(
        {atOption, QStringLiteral("Explain only the keys nearest to this time."), QStringLiteral("seconds")});
    if (const auto status = line.read(arguments, out, err)) {
        return *status;
    }
    ScriptArgument argument = ScriptArgument::ofFileOrStatements(line.subject());
    QString fault;
    const auto at = timeOf(line.value(atOption), fault);
    const bool needsLists = argument.script.rows.isEmpty() && argument.faults.isEmpty();
    const ListSources sources = needsLists ? ListSources::read(line.paths()) : ListSources();
    argument.faults << fault << sources.fault;
    argument.faults.removeAll(QString());
    for (const QString& sentence : qAsConst(argument.faults)) {
        err << printable(sentence) << '\n';
    }
    if (!argument.faults.isEmpty()) {
        return Unusable;
    }
    const QStringList remarks = sources.remarks();
    for (const QString& note : remarks) {
        err << "note: " << printable(note) << '\n';
    }
    const Played played = playedOf(argument, sources, line);
    const QStringList lines = WhyAnswer::of(played.lists, played.script, played.placeOf, at);
    for (const QString& text : lines) {
        out << printable(text) << '\n';
    }
    return Clean;
}

} // namespace checker

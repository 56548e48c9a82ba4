// SPDX-License-Identifier: MIT
#include "checker/CardReport.h"
#include "checker/Commands.h"
#include "checker/HelpText.h"
#include "checker/ListSources.h"
#include "checker/Printable.h"
#include "model/Alphabet.h"
#include "simulator/script/ScriptWords.h"

#include <QCommandLineParser>

#include <algorithm>

namespace checker {

namespace {

/// The arguments of `card`.
struct CardArguments
{
    QStringList paths;
    QString state;
    QString format;
    bool isOrvane = false;
    QString help;
    QString fault;

    static CardArguments parse(const QStringList& arguments);
};

QString faultOf(const CardArguments& line, const QString& embosser)
{
    if (line.format == QLatin1String("brf")) {
        return QStringLiteral(
            "The card in braille comes from another program: keyboard-handler-simulator --data "
            "FOLDER serves it as /api/card.brf, and its page saves it from the view Key card.");
    }
    if (!QStringList{QStringLiteral("text"), QStringLiteral("html"), QStringLiteral("json")}.contains(
            line.format)) {
        return QStringLiteral("--format must be text, html or json, not \"%1\".").arg(line.format);
    }
    const QString state = line.state.isEmpty() || model::Alphabet::stateOf(line.state)
                              ? QString()
                              : ScriptWords::checkState(line.state);
    return state.isEmpty() ? ScriptWords::checkModel(embosser) : state;
}

CardArguments CardArguments::parse(const QStringList& arguments)
{
    const QCommandLineOption embosser(
        QStringLiteral("model"), QStringLiteral("The embosser's model: Pellit, if not given, or Orvane."),
        QStringLiteral("model"), QStringLiteral("Pellit"));
    const QCommandLineOption state(QStringLiteral("state"),
                                   QStringLiteral("Only what the keys do in this operating state."),
                                   QStringLiteral("state"));
    const QCommandLineOption format(QStringLiteral("format"),
                                    QStringLiteral("The output: text, if not given, html or json."),
                                    QStringLiteral("format"), QStringLiteral("text"));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints the key card: what the keys can do in each state, and the rows that never work."));
    parser.addPositionalArgument(
        QStringLiteral("path"),
        QStringLiteral("The folder of the key lists, or single files; the current folder, if not given."));
    parser.addOptions({embosser, state, format, HelpText::option()});
    CardArguments result;
    const bool isParsed = parser.parse(arguments);
    result.paths = parser.positionalArguments();
    result.state = parser.value(state);
    result.format = parser.value(format);
    result.isOrvane = parser.value(embosser) == QLatin1String("Orvane");
    result.help = isParsed && parser.isSet(QStringLiteral("help"))
                      ? HelpText::of(parser, QStringLiteral("card [option...] [path...]"))
                      : QString();
    result.fault = isParsed ? faultOf(result, parser.value(embosser)) : parser.errorText();
    return result;
}

void keepOnly(const QString& state, QVector<KeyCardState>& states)
{
    const auto isOther = [&state](const KeyCardState& each) { return each.state != state; };
    states.erase(std::remove_if(states.begin(), states.end(), isOther), states.end());
}

QString reportOf(const KeyCard& card, const QString& format)
{
    return format == QLatin1String("json")   ? printableJson(CardReport::json(card))
           : format == QLatin1String("html") ? CardReport::html(card)
                                             : CardReport::text(card);
}

} // namespace

Status Commands::card(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    const CardArguments line = CardArguments::parse(arguments);
    if (!line.help.isEmpty()) {
        out << line.help;
        return Clean;
    }
    const ListSources sources = line.fault.isEmpty() ? ListSources::read(line.paths) : ListSources();
    const QString fault = line.fault.isEmpty() ? sources.fault : line.fault;
    if (!fault.isEmpty()) {
        err << printable(fault) << '\n';
        return Unusable;
    }
    KeyCard card = KeyCard::of(sources.lists(line.isOrvane));
    if (!line.state.isEmpty()) {
        keepOnly(line.state, card.states);
    }
    out << reportOf(card, line.format);
    return card.isProved ? Clean : NotProved;
}

} // namespace checker

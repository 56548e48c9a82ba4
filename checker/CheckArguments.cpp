// SPDX-License-Identifier: MIT
#include "checker/CheckArguments.h"

#include "checker/Explanations.h"
#include "checker/HelpText.h"
#include "checker/Suggestion.h"

#include <QCommandLineParser>

namespace checker {

using std::chrono::milliseconds;

namespace {

constexpr int maxPace = 60'000; // milliseconds

QCommandLineOption option(const char* name, const char* description, const char* value,
                          const char* standard = "")
{
    return QCommandLineOption(QString::fromLatin1(name), QString::fromLatin1(description),
                              QString::fromLatin1(value), QString::fromLatin1(standard));
}

/// The options of the command line.
struct Options
{
    QCommandLineOption model =
        option("model", "Check for one embosser model: Pellit or Orvane. Without it, for both.", "model");
    QCommandLineOption hands =
        option("hands", "How many keys a person holds at once: 1 to 4. Without it, 2.", "number", "2");
    QCommandLineOption pace =
        option("pace",
               "The shortest time between two movements of a person: a multiple of 250 ms up to 60000. "
               "Without it, 0.",
               "milliseconds", "0");
    QCommandLineOption format =
        option("format", "The output: text, lines, json or sarif. Without it, text.", "format", "text");
    QCommandLineOption allow = option("allow",
                                      "Leave out the findings with this id, or with ID:ACTION those about "
                                      "rows with this action; may be repeated.",
                                      "id");
    QCommandLineOption deny =
        option("deny", "Count warnings as errors: the only value is \"warning\".", "level");
    QCommandLineOption witness =
        option("witness", "Write a key script for each row and state that works into this folder.", "folder");
    QCommandLineOption fix{QStringLiteral("fix"),
                           QStringLiteral("Mend what has one safe mend, and print what is left.")};
    QCommandLineOption help = HelpText::option();
};

QString readModel(const QString& word, CheckOptions& options)
{
    if (word.isEmpty()) {
        return {};
    }
    options.isOrvane = word == QLatin1String("Orvane");
    return *options.isOrvane || word == QLatin1String("Pellit")
               ? QString()
               : QStringLiteral("The model must be Pellit or Orvane, not \"%1\".").arg(word);
}

QString readHands(const QString& word, CheckOptions& options)
{
    options.fingers = word.toInt();
    return options.fingers >= 1 && options.fingers <= model::Environment::maxFingers
               ? QString()
               : QStringLiteral("The number of hands must be 1 to %1, not \"%2\".")
                     .arg(model::Environment::maxFingers)
                     .arg(word);
}

QString readPace(const QString& word, CheckOptions& options)
{
    bool isNumber = false;
    const int pace = word.toInt(&isNumber);
    options.pace = milliseconds(pace);
    const bool isTick = isNumber && options.pace % model::Environment::tick == milliseconds::zero();
    return isTick && pace >= 0 && pace <= maxPace
               ? QString()
               : QStringLiteral("The pace must be a multiple of %1 ms up to %2 ms, not \"%3\".")
                     .arg(model::Environment::tick.count())
                     .arg(maxPace)
                     .arg(word);
}

QString readFormat(const QString& word, CheckArguments::Format& format)
{
    static const QMap<QString, CheckArguments::Format> formats{
        {QStringLiteral("text"), CheckArguments::Format::Text},
        {QStringLiteral("lines"), CheckArguments::Format::Lines},
        {QStringLiteral("json"), CheckArguments::Format::Json},
        {QStringLiteral("sarif"), CheckArguments::Format::Sarif}};
    format = formats.value(word);
    return formats.contains(word)
               ? QString()
               : QStringLiteral("The format must be text, lines, json or sarif, not \"%1\".").arg(word);
}

QString checkAllowed(const QStringList& words)
{
    for (const QString& word : words) {
        const QString fault = Explanations::checkId(word.section(QLatin1Char(':'), 0, 0));
        if (!fault.isEmpty()) {
            return fault;
        }
    }
    return {};
}

QString readDeny(const QStringList& words, bool& deniesWarnings)
{
    deniesWarnings = !words.isEmpty();
    for (const QString& word : words) {
        if (word != QLatin1String("warning")) {
            return QStringLiteral("Only warnings can be denied, not \"%1\".").arg(word);
        }
    }
    return {};
}

QString checkMendable(const QStringList& paths)
{
    return paths.contains(QStringLiteral("-"))
               ? QStringLiteral("Standard input cannot be mended: --fix needs files.")
               : QString();
}

} // namespace

CheckArguments CheckArguments::parse(const QStringList& arguments)
{
    const Options options;
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Checks key lists and proves which of their rows work."));
    parser.addPositionalArgument(
        QStringLiteral("path"),
        QStringLiteral(
            "A folder with key lists, or single files; - is standard input. Without it, the current "
            "folder."));
    parser.addOptions({options.model, options.hands, options.pace, options.format, options.allow,
                       options.deny, options.witness, options.fix, options.help});
    CheckArguments result;
    if (!parser.parse(arguments)) {
        result.fault = parser.errorText();
        return result;
    }
    result.help = parser.isSet(options.help)
                      ? HelpText::of(parser, QStringLiteral("check [option...] [path...]"))
                      : QString();
    result.paths = parser.positionalArguments();
    result.options.allowed = parser.values(options.allow);
    result.witnessFolder = parser.value(options.witness);
    result.mends = parser.isSet(options.fix);
    const QStringList faults{readModel(parser.value(options.model), result.options),
                             readHands(parser.value(options.hands), result.options),
                             readPace(parser.value(options.pace), result.options),
                             readFormat(parser.value(options.format), result.format),
                             readDeny(parser.values(options.deny), result.deniesWarnings),
                             checkAllowed(result.options.allowed),
                             result.mends ? checkMendable(result.paths) : QString()};
    for (const QString& fault : faults) {
        result.fault = result.fault.isEmpty() ? fault : result.fault;
    }
    return result;
}

QString CheckArguments::checkActions(const model::KeyLists& lists) const
{
    QStringList actions;
    const QVector<model::RowId> ids = lists.ids();
    for (const model::RowId id : ids) {
        actions.append(lists.row(id).eAction());
    }
    for (const QString& word : options.allowed) {
        const QString action = word.section(QLatin1Char(':'), 1);
        if (word.contains(QLatin1Char(':')) && !actions.contains(action)) {
            const QString question = Suggestion::question(action, actions);
            return QStringLiteral("No row has the action \"%1\"").arg(action) +
                   (question.isEmpty() ? QStringLiteral(".") : question);
        }
    }
    return {};
}

} // namespace checker

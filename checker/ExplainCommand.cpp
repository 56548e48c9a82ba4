// SPDX-License-Identifier: MIT
#include "checker/Commands.h"
#include "checker/Explanations.h"
#include "checker/FindingText.h"
#include "checker/Printable.h"

namespace checker {

namespace {

constexpr int width = 80;

/// Breaks a paragraph into lines.
QString wrapped(const QString& paragraph)
{
    QString text;
    QString line;
    const QStringList words = paragraph.split(QLatin1Char(' '));
    for (const QString& word : words) {
        if (!line.isEmpty() && line.size() + 1 + word.size() > width) {
            text += line + QLatin1Char('\n');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return text + line + QLatin1Char('\n');
}

void print(const QString& title, const Example& example, QTextStream& out)
{
    const QStringList arguments = example.arguments();
    out << '\n' << title;
    if (!arguments.isEmpty()) {
        out << ", with " << arguments.join(QLatin1Char(' '));
    }
    out << ":\n";
    for (const model::List list : model::allLists) {
        const QByteArray& text = example.files[static_cast<size_t>(list)];
        if (!text.isEmpty()) {
            out << "\n  " << model::KeyLists::fileOf(list) << '\n';
            for (const QString& line : QString::fromUtf8(text).trimmed().split(QLatin1Char('\n'))) {
                out << "    " << line << '\n';
            }
        }
    }
}

void print(const Explanation& explanation, QTextStream& out)
{
    out << nameOf(explanation.level) << '[' << explanation.id << "]: " << explanation.title << "\n\n";
    const QStringList paragraphs = explanation.text.split(QStringLiteral("\n\n"));
    for (int i = 0; i < paragraphs.size(); ++i) {
        out << (i > 0 ? "\n" : "") << wrapped(paragraphs.at(i));
    }
    if (explanation.bad) {
        print(QStringLiteral("Wrong"), *explanation.bad, out);
        print(QStringLiteral("Right"), *explanation.good, out);
    }
}

} // namespace

Status Commands::explain(const QStringList& arguments, QTextStream& out, QTextStream& err)
{
    const QString id = arguments.value(1);
    const bool asksForHelp = id == QLatin1String("--help") || id == QLatin1String("-h");
    const Explanation* explanation = Explanations::find(id);
    if (explanation && arguments.size() == 2) {
        print(*explanation, out);
        return Clean;
    }
    if (!asksForHelp && arguments.size() == 2) {
        err << printable(Explanations::checkId(id)) << '\n';
        return Unusable;
    }
    QTextStream& stream = asksForHelp ? out : err;
    stream << "Usage: keyboard-handler-keys explain ID\nThe ids are:\n";
    for (const Explanation& each : Explanations::all()) {
        stream << "  " << each.id.leftJustified(20) << each.title << '\n';
    }
    return asksForHelp ? Clean : Unusable;
}

} // namespace checker

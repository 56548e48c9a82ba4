// SPDX-License-Identifier: MIT
#include "checker/CardReport.h"

#include "card/CardJson.h"
#include "card/CardSentences.h"
#include "checker/Printable.h"

#include <QJsonDocument>

namespace checker {

namespace {

const QString neverTitle = QStringLiteral("Rows that never work");

QString titleOf(const KeyCard& card)
{
    return QStringLiteral("Key card for the model ") + card.model;
}

QString cell(const QString& text)
{
    return QStringLiteral("<td>%1</td>").arg(printable(text).toHtmlEscaped());
}

QString paragraphs(const QStringList& texts)
{
    QString html;
    for (const QString& text : texts) {
        html += QStringLiteral("<p>%1</p>\n").arg(printable(text).toHtmlEscaped());
    }
    return html;
}

/// The beginning of a section with a table, whose rows `</table></section>` must follow.
QString sectionOf(const QString& title, const QStringList& notes, const QString& caption,
                  const QStringList& columns)
{
    QString html = QStringLiteral("<section>\n<h2>%1</h2>\n").arg(title.toHtmlEscaped()) + paragraphs(notes);
    html += QStringLiteral("<table>\n<caption>%1</caption>\n<tr>").arg(caption.toHtmlEscaped());
    for (const QString& column : columns) {
        html += QStringLiteral("<th scope=\"col\">%1</th>").arg(column);
    }
    return html + QStringLiteral("</tr>\n");
}

QString rowOf(const QString& heading, const QStringList& cells)
{
    QString html = QStringLiteral("<tr><th scope=\"row\">%1</th>").arg(printable(heading).toHtmlEscaped());
    for (const QString& text : cells) {
        html += cell(text);
    }
    return html + QStringLiteral("</tr>\n");
}

QString htmlOf(const KeyCardState& state)
{
    const QStringList notes = CardSentences::notesOf(state);
    if (state.entries.isEmpty()) {
        return QStringLiteral("<section>\n<h2>%1</h2>\n").arg(state.state) + paragraphs(notes) +
               QStringLiteral("</section>\n");
    }
    QString html = sectionOf(state.state, notes, QStringLiteral("Actions in the state ") + state.state,
                             {QStringLiteral("Keys"), QStringLiteral("Action"), QStringLiteral("Receivers"),
                              QStringLiteral("What else happens")});
    const auto entries = CardSentences::withSingleKeysJoined(state.entries);
    for (const KeyCardEntry& entry : entries) {
        html += rowOf(CardSentences::how(entry), {entry.action, entry.receivers.join(QStringLiteral(", ")),
                                                  CardSentences::notesOf(entry).join(QLatin1Char(' '))});
    }
    return html + QStringLiteral("</table>\n</section>\n");
}

QString htmlOf(const QVector<KeyCardDeadRow>& rows, const QString& environment)
{
    QString html = sectionOf(neverTitle, {CardSentences::proof(environment)},
                             QStringLiteral("Rows that no keys announce"),
                             {QStringLiteral("Row"), QStringLiteral("Reason")});
    for (const KeyCardDeadRow& row : rows) {
        html += rowOf(CardSentences::describe(row), {row.why});
    }
    return html + QStringLiteral("</table>\n</section>\n");
}

/// A heading, then its paragraphs.
QString textOf(const QString& heading, const QStringList& texts)
{
    QString text = QLatin1Char('\n') + heading + QLatin1Char('\n');
    for (const QString& paragraph : texts) {
        text += QStringLiteral("  ") + printable(paragraph) + QLatin1Char('\n');
    }
    return text;
}

QString textOf(const KeyCardState& state)
{
    QStringList texts = CardSentences::notesOf(state);
    const auto entries = CardSentences::withSingleKeysJoined(state.entries);
    for (const KeyCardEntry& entry : entries) {
        const QStringList effects{CardSentences::outcome(entry.action, entry.receivers)};
        texts += CardSentences::how(entry);
        texts += QStringLiteral("    ") + (effects + CardSentences::notesOf(entry)).join(QLatin1Char(' '));
    }
    return textOf(state.state, texts);
}

} // namespace

QString CardReport::text(const KeyCard& card)
{
    QString text = titleOf(card) + QLatin1Char('\n');
    for (const QString& note : card.notes) {
        text += printable(note) + QLatin1Char('\n');
    }
    for (const KeyCardState& state : card.states) {
        text += textOf(state);
    }
    if (!card.deadRows.isEmpty()) {
        QStringList texts{CardSentences::proof(card.environment)};
        for (const KeyCardDeadRow& row : card.deadRows) {
            texts += CardSentences::describe(row) + QLatin1Char(' ') + row.why;
        }
        text += textOf(neverTitle, texts);
    }
    return text;
}

QString CardReport::html(const KeyCard& card)
{
    QString html =
        QStringLiteral(
            "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\"/>\n"
            "<meta name=\"viewport\" content=\"width=device-width\"/>\n<title>%1</title>\n<style>\n"
            ":root { color-scheme: light dark; font-family: sans-serif; overflow-wrap: anywhere }\n"
            "table { border-collapse: collapse }\n"
            "caption { text-align: start }\n"
            "th, td { border: 1px solid; padding: 0.3em; text-align: start; vertical-align: top }\n"
            "tr { break-inside: avoid }\n"
            "@media print { section + section { break-before: page } }\n"
            "</style>\n</head>\n<body>\n<main>\n<h1>%1</h1>\n")
            .arg(titleOf(card)) +
        paragraphs(card.notes);
    for (const KeyCardState& state : card.states) {
        html += htmlOf(state);
    }
    html += card.deadRows.isEmpty() ? QString() : htmlOf(card.deadRows, card.environment);
    return html + QStringLiteral("</main>\n</body>\n</html>\n");
}

QByteArray CardReport::json(const KeyCard& card)
{
    return QJsonDocument(toJson(card)).toJson();
}

} // namespace checker

// SPDX-License-Identifier: MIT
#include "workbench/braille/BrailleCard.h"

#include "card/CardSentences.h"
#include "card/KeyCard.h"
#include "workbench/braille/BraillePages.h"
#include "workbench/braille/BrailleWords.h"

namespace {

QString textOf(const KeyCardEntry& entry)
{
    const QStringList sentences{CardSentences::how(entry),
                                CardSentences::outcome(entry.action, entry.receivers)};
    return (sentences + CardSentences::notesOf(entry)).join(QLatin1Char(' '));
}

class CardWriter
{
public:
    CardWriter(const QString& model, BrailleWords& words) : m_model(model), m_words(words) {}

    void begin(const QString& section)
    {
        m_pages.beginSection(m_words.translate(QStringLiteral("Key card %1: %2").arg(m_model, section)));
        m_pages.addHeading(m_words.translate(section));
    }
    void add(const QString& text) { m_pages.addParagraph(m_words.translate(text)); }
    void add(const QStringList& texts)
    {
        for (const QString& text : texts) {
            add(text);
        }
    }

    QByteArray bytes() const { return m_pages.bytes(); }

private:
    QString m_model;
    BrailleWords& m_words;
    BraillePages m_pages;
};

void write(const KeyCardState& state, CardWriter& writer)
{
    writer.begin(state.state);
    writer.add(CardSentences::notesOf(state));
    for (const KeyCardEntry& entry : CardSentences::withSingleKeysJoined(state.entries)) {
        writer.add(textOf(entry));
    }
}

} // namespace

QByteArray brailleCard(const KeyCard& card, QString* error)
{
    BrailleWords words;
    if (!words.isUsable()) {
        if (error) {
            *error = QStringLiteral("The tables of liblouis (%1) are missing.").arg(BrailleWords::tables());
        }
        return {};
    }
    CardWriter writer(card.model, words);
    if (!card.notes.isEmpty()) {
        writer.begin(QStringLiteral("Notes"));
        writer.add(card.notes);
    }
    for (const KeyCardState& state : card.states) {
        write(state, writer);
    }
    if (!card.deadRows.isEmpty()) {
        writer.begin(QStringLiteral("Rows that never work"));
        writer.add(CardSentences::proof(card.environment));
        for (const KeyCardDeadRow& row : card.deadRows) {
            writer.add(CardSentences::describe(row) + QLatin1Char(' ') + row.why);
        }
    }
    return writer.bytes();
}

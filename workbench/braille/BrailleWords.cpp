// SPDX-License-Identifier: MIT
#include "workbench/braille/BrailleWords.h"

#include <QVector>

#include <liblouis/liblouis.h>

#include <algorithm>

namespace {

// The display table maps cells to ASCII characters.
constexpr char tableNames[] = "en-us-brf.dis,en-ueb-g1.ctb";
constexpr int maxChunkLength = 200; // limits the buffer for long words
constexpr int maxCellsPerCharacter = 16;
constexpr char fullCell = '=';

static_assert(sizeof(widechar) == sizeof(uint), "liblouis must be built for 32-bit characters");

bool isCell(widechar character)
{
    return character > 0x20 && character <= 0x5f;
}

/// The input for liblouis. Unprintable characters are replaced, because they would end the text or be lost.
QVector<widechar> inputOf(const QString& word)
{
    QVector<widechar> input = word.toUcs4();
    for (widechar& character : input) {
        if (!QChar::isPrint(character)) {
            character = QChar::ReplacementCharacter;
        }
    }
    return input;
}

QByteArray cellsOf(const QVector<widechar>& input)
{
    int inputSize = input.size();
    QVector<widechar> output(inputSize * maxCellsPerCharacter);
    int outputSize = output.size();
    const int done = lou_translateString(tableNames, input.constData(), &inputSize, output.data(),
                                         &outputSize, nullptr, nullptr, 0);
    if (done == 0 || inputSize != input.size()) {
        return QByteArray(input.size(), fullCell);
    }
    QByteArray cells;
    for (int i = 0; i < outputSize; ++i) {
        cells.append(isCell(output.at(i)) ? static_cast<char>(output.at(i)) : fullCell);
    }
    return cells;
}

QByteArray translated(const QString& word)
{
    const QVector<widechar> input = inputOf(word);
    QByteArray cells;
    for (int i = 0; i < input.size(); i += maxChunkLength) {
        cells += cellsOf(input.mid(i, maxChunkLength));
    }
    return cells;
}

} // namespace

BrailleWords::BrailleWords()
{
    // Silences liblouis, because brailleCard() reports missing tables.
    lou_registerLogCallback([](logLevels, const char*) {});
    m_isUsable = lou_getTable(tableNames) != nullptr;
}

QString BrailleWords::tables()
{
    return QString::fromLatin1(tableNames);
}

QByteArrayList BrailleWords::translate(const QString& text)
{
    QByteArrayList words;
    const QStringList parts = text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        auto cached = m_cache.find(part);
        if (cached == m_cache.end()) {
            cached = m_cache.insert(part, translated(part));
        }
        words.append(*cached);
    }
    return words;
}

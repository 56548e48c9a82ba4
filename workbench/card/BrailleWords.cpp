// SPDX-License-Identifier: MIT
#include "workbench/card/BrailleWords.h"

#include <QVector>

#include <liblouis/liblouis.h>

#include <algorithm>

namespace {

// The display table decides which ASCII character stands for a cell.
constexpr char tableNames[] = "en-us-brf.dis,en-ueb-g1.ctb";
constexpr int mostAtOnce = 200; // longer words are translated in pieces, so that no buffer grows with them
constexpr int mostCellsOfCharacter = 16;
constexpr char fullCell = '=';

static_assert(sizeof(widechar) == sizeof(uint), "liblouis must be built for 32-bit characters");

bool isCell(widechar character)
{
    return character > 0x20 && character <= 0x5f;
}

/// A liblouis input; what cannot be printed is replaced, for it would end the text or be lost.
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
    QVector<widechar> output(inputSize * mostCellsOfCharacter);
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
    for (int i = 0; i < input.size(); i += mostAtOnce) {
        cells += cellsOf(input.mid(i, mostAtOnce));
    }
    return cells;
}

} // namespace

BrailleWords::BrailleWords()
{
    // What liblouis has to say about a missing table is said by who asks for words.
    lou_registerLogCallback([](logLevels, const char*) {});
    m_isUsable = lou_getTable(tableNames) != nullptr;
}

QString BrailleWords::tables()
{
    return QString::fromLatin1(tableNames);
}

QByteArrayList BrailleWords::of(const QString& text)
{
    QByteArrayList words;
    const QStringList parts = text.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        auto known = m_known.find(part);
        if (known == m_known.end()) {
            known = m_known.insert(part, translated(part));
        }
        words.append(*known);
    }
    return words;
}

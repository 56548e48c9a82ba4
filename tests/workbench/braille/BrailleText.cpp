// SPDX-License-Identifier: MIT
#include "tests/workbench/braille/BrailleText.h"

#include <QHash>

#include <liblouis/liblouis.h>

namespace {

constexpr char tables[] = "en-us-brf.dis,en-ueb-g1.ctb";
constexpr int cellsPerLine = 40;
constexpr int maxCharactersPerCell = 8;

QByteArrayList joinSplitWords(const QByteArrayList& lines)
{
    QByteArrayList words;
    bool isContinued = false;
    for (const QByteArray& line : lines) {
        const QByteArrayList parts = line.simplified().split(' ');
        for (const QByteArray& part : parts) {
            if (isContinued) {
                words.last() += part;
            } else {
                words.append(part);
            }
            isContinued = false;
        }
        isContinued = line.size() == cellsPerLine && line.endsWith('"');
        if (isContinued) {
            words.last().chop(1);
        }
    }
    return words;
}

} // namespace

QVector<QByteArrayList> BrailleText::pages(const QByteArray& brf)
{
    QVector<QByteArrayList> pages;
    for (const QByteArray& page : brf.split('\f')) {
        QByteArrayList lines = page.split('\n');
        if (lines.last().isEmpty()) { // the part after the last line end
            lines.removeLast();
        }
        for (QByteArray& line : lines) {
            if (line.endsWith('\r')) {
                line.chop(1);
            }
        }
        pages.append(lines);
    }
    return pages;
}

QString BrailleText::textOf(const QByteArray& cells)
{
    QVector<widechar> input;
    for (const char cell : cells) {
        input.append(static_cast<unsigned char>(cell));
    }
    int inputSize = input.size();
    QVector<widechar> output(inputSize * maxCharactersPerCell);
    int outputSize = output.size();
    lou_backTranslateString(tables, input.constData(), &inputSize, output.data(), &outputSize, nullptr,
                            nullptr, 0);
    return QString::fromUcs4(output.constData(), outputSize);
}

QString BrailleText::body(const QByteArray& brf)
{
    QHash<QByteArray, QString> known;
    QStringList texts;
    for (const QByteArrayList& page : pages(brf)) {
        for (const QByteArray& word : joinSplitWords(page.mid(1))) {
            if (!known.contains(word)) {
                known.insert(word, textOf(word));
            }
            texts.append(known.value(word));
        }
    }
    return texts.join(' ').simplified();
}

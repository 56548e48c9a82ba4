// SPDX-License-Identifier: MIT
#include "workbench/braille/BraillePages.h"

namespace {

constexpr int indentation = 2;
constexpr char continued = '"'; // dot 5: the word continues on the next line
const QByteArray digits = QByteArrayLiteral("JABCDEFGHI");

QByteArray numberCells(int number)
{
    QByteArray cells = QByteArrayLiteral("#");
    for (const char digit : QByteArray::number(number)) {
        cells.append(digits.at(digit - '0'));
    }
    return cells;
}

class LineFiller
{
public:
    void add(const QByteArray& word)
    {
        if (m_line.size() > margin() && m_line.size() + 1 + word.size() > BraillePages::cellsPerLine) {
            next();
        }
        if (m_line.size() > margin()) {
            m_line.append(' ');
        }
        int written = 0;
        while (m_line.size() + word.size() - written > BraillePages::cellsPerLine) {
            const int room = BraillePages::cellsPerLine - m_line.size() - 1;
            m_line.append(word.mid(written, room)).append(continued);
            written += room;
            next();
        }
        m_line.append(word.mid(written));
    }

    QByteArrayList lines() const
    {
        return m_line.size() > margin() ? m_lines + QByteArrayList{m_line} : m_lines;
    }

private:
    int margin() const { return m_lines.isEmpty() ? 0 : indentation; }
    void next()
    {
        m_lines.append(m_line);
        m_line = QByteArray(indentation, ' ');
    }

    QByteArrayList m_lines;
    QByteArray m_line;
};

QByteArray firstLine(const QByteArrayList& words, int width)
{
    return words.join(' ').left(width);
}

} // namespace

void BraillePages::beginSection(const QByteArrayList& head)
{
    m_head = head;
    beginPage();
}

void BraillePages::addHeading(const QByteArrayList& words)
{
    const QByteArray text = firstLine(words, cellsPerLine);
    addLines({QByteArray(), QByteArray((cellsPerLine - text.size()) / 2, ' ') + text, QByteArray()});
}

void BraillePages::addParagraph(const QByteArrayList& words)
{
    LineFiller filler;
    for (const QByteArray& word : words) {
        filler.add(word);
    }
    addLines(filler.lines());
}

void BraillePages::beginPage()
{
    if (m_page > 0) {
        m_bytes.append('\f');
    }
    ++m_page;
    const QByteArray number = numberCells(m_page);
    const QByteArray head = firstLine(m_head, cellsPerLine - number.size() - 1);
    m_bytes += head.leftJustified(cellsPerLine - number.size()) + number + "\r\n";
    m_line = 1;
}

void BraillePages::addLines(const QByteArrayList& lines)
{
    if (m_line > 1 && m_line + lines.size() > linesPerPage && lines.size() < linesPerPage) {
        beginPage();
    }
    for (const QByteArray& line : lines) {
        if (m_line == linesPerPage) {
            beginPage();
        }
        m_bytes += line + "\r\n";
        ++m_line;
    }
}

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// Lays words of cells out on pages of 25 lines of 40 cells, as an embosser takes them: lines end with CR LF,
/// and a form feed stands between two pages. The first line of each page is its running head.
class BraillePages
{
public:
    static constexpr int cellsPerLine = 40;
    static constexpr int linesPerPage = 25;

    /// Begins a page; it and those that follow it have `head` in their first line, as far as there is room
    /// beside the number of the page, which is at the right.
    void beginSection(const QByteArrayList& head);
    /// A centred line between two empty ones.
    void addHeading(const QByteArrayList& words);
    /// Words from the margin on, further lines indented by two cells. A word that no line can hold is broken
    /// with the sign of a continued line. What fits on one page is not torn apart.
    void addParagraph(const QByteArrayList& words);

    QByteArray bytes() const { return m_bytes; }

private:
    void beginPage();
    void addLines(const QByteArrayList& lines);

    QByteArrayList m_head;
    QByteArray m_bytes;
    int m_page = 0;
    int m_line = 0;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// Lays out braille words on pages of 25 lines of 40 cells, in the format of embossers: lines end with CR LF,
/// and a form feed separates pages. The first line of each page is its running head.
class BraillePages
{
public:
    static constexpr int cellsPerLine = 40;
    static constexpr int linesPerPage = 25;

    /// Starts a page. The first line of this and the following pages is `head`, truncated if necessary, and
    /// the right-aligned page number.
    void beginSection(const QByteArrayList& head);
    /// A centred line between two empty ones.
    void addHeading(const QByteArrayList& words);
    /// A paragraph; its second and further lines are indented by two cells. Words longer than a line are
    /// split with the line-continuation sign. A paragraph that fits on one page is not split between pages.
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

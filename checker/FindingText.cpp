// SPDX-License-Identifier: MIT
#include "checker/FindingText.h"

#include "checker/OutputWords.h"
#include "checker/Printable.h"
#include "checker/SearchWords.h"

#include <algorithm>

namespace checker {

namespace {

/// The width of an excerpt, and how much of it may be before the place.
constexpr int maxWidth = 100;
constexpr int maxBefore = 40;
/// What does not fit is not decoded: a line may be a mebibyte long.
constexpr int maxBytes = 4 * maxWidth;
const QString ellipsis = QStringLiteral("...");

/// A text by its characters, each of which is one or two units of UTF-16.
QString left(const QString& text, int count)
{
    const auto characters = text.toUcs4();
    return QString::fromUcs4(characters.constData(), qMin(count, characters.size()));
}

QString right(const QString& text, int count)
{
    const auto characters = text.toUcs4();
    const int kept = qMin(count, characters.size());
    return QString::fromUcs4(characters.constData() + characters.size() - kept, kept);
}

int widthOf(const QString& text)
{
    return text.toUcs4().size();
}

QString blanks(int count)
{
    return QString(count, QLatin1Char(' '));
}

QString counted(int count, const QString& noun)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(noun, count == 1 ? QString() : QStringLiteral("s"));
}

QString sentenceOn(const ProofNote& note)
{
    const QString extent = SearchWords::extentOf(note.proof);
    return note.proof.isComplete ? QStringLiteral("proved: %1; no keys announce this row").arg(extent)
                                 : QStringLiteral("not proved: the search ended after %1").arg(extent);
}

} // namespace

QString nameOf(Level level)
{
    switch (level) {
    case Level::Error:
        return QStringLiteral("error");
    case Level::Warning:
        return QStringLiteral("warning");
    case Level::Note:
        break;
    }
    return QStringLiteral("note");
}

QString FindingText::describe(const Finding& finding) const
{
    int lastLine = lineOf(finding.place);
    for (const Place& place : finding.related) {
        lastLine = qMax(lastLine, lineOf(place));
    }
    const int margin = QString::number(lastLine).size();
    QString text = heading(finding) + placesIn(finding.place.list, finding, margin);
    for (const model::List list : model::allLists) {
        const bool isIn = std::any_of(finding.related.begin(), finding.related.end(),
                                      [list](const Place& place) { return place.list == list; });
        text += isIn && list != finding.place.list ? placesIn(list, finding, margin) : QString();
    }
    if (finding.proof) {
        text += QStringLiteral("%1= %2\n").arg(blanks(margin + 2), sentenceOn(*finding.proof));
    }
    if (!finding.help.isEmpty()) {
        text += QStringLiteral("%1= help: %2%3\n")
                    .arg(blanks(margin + 2), printable(finding.help),
                         finding.mend ? QStringLiteral(" (--fix)") : QString());
    }
    return text + QLatin1Char('\n');
}

QString FindingText::heading(const Finding& finding) const
{
    const QString kind = QStringLiteral("%1[%2]").arg(nameOf(finding.level), finding.id);
    const int colour = finding.level == Level::Error ? 31 : finding.level == Level::Warning ? 33 : 36;
    const QString shown = m_hasColours ? QStringLiteral("\x1b[1;%1m%2\x1b[0m").arg(colour).arg(kind) : kind;
    return QStringLiteral("%1: %2\n").arg(shown, printable(finding.message));
}

int FindingText::lineOf(const Place& place) const
{
    return m_sources.file(place.list).position(place.range.begin).line;
}

/// The name of the file, with the position of the first of its places, and excerpts of all of them.
QString FindingText::placesIn(model::List list, const Finding& finding, int margin) const
{
    QVector<QPair<Place, QChar>> places;
    if (finding.place.list == list) {
        places.append({finding.place, QLatin1Char('^')});
    }
    for (const Place& place : finding.related) {
        if (place.list == list) {
            places.append({place, QLatin1Char('-')});
        }
    }
    const SourceFile& file = m_sources.file(list);
    const Position position = file.position(places.first().first.range.begin);
    QString text = QStringLiteral("%1%2 %3:%4:%5\n%6|\n")
                       .arg(blanks(margin + 1),
                            finding.place.list == list ? QStringLiteral("-->") : QStringLiteral(":::"),
                            printable(file.name()), QString::number(position.line),
                            QString::number(position.column), blanks(margin + 2));
    std::stable_sort(places.begin(), places.end(),
                     [](const auto& a, const auto& b) { return a.first.range.begin < b.first.range.begin; });
    int shownLine = 0;
    for (const auto& [place, mark] : qAsConst(places)) {
        const int line = lineOf(place);
        text += shownLine != 0 && line > shownLine + 1 ? blanks(margin + 2) + ellipsis + QLatin1Char('\n')
                                                       : QString();
        shownLine = line;
        text += excerpt(place, mark, margin);
    }
    return text;
}

/// The line of the place, from shortly before the place, with marks below.
QString FindingText::excerpt(const Place& place, QChar mark, int margin) const
{
    const SourceFile& file = m_sources.file(place.list);
    const Range line = file.lineAround(place.range.begin);
    const int at = qBound(line.begin, place.range.begin, line.end);
    const int begin = qMax(line.begin, at - maxBytes);
    const QString before = printable(file.textOf({begin, at}));
    const QString after = printable(file.textOf({at, qMin(line.end, at + maxBytes)}));
    const bool isCut =
        begin > line.begin || (widthOf(before) > maxBefore && widthOf(before + after) > maxWidth);
    const QString lead = isCut ? ellipsis + right(before, maxBefore) : before;
    const QString shown = lead + after;
    const QString marked =
        printable(file.textOf({at, qBound(at, place.range.end, qMin(line.end, at + maxBytes))}));
    const int marks = qBound(1, widthOf(marked), qMax(1, maxWidth - widthOf(lead)));
    QString text = QStringLiteral(" %1 | ").arg(lineOf(place), margin);
    text += (widthOf(shown) > maxWidth ? left(shown, maxWidth - ellipsis.size()) + ellipsis : shown) +
            QLatin1Char('\n');
    text += QStringLiteral("%1| %2%3").arg(blanks(margin + 2), blanks(widthOf(lead)), QString(marks, mark));
    const QString remark = place.remark.isEmpty() ? QString() : QLatin1Char(' ') + printable(place.remark);
    return text + remark + QLatin1Char('\n');
}

QString FindingText::summary(const CheckResult& result) const
{
    const auto countOf = [&](Level level) {
        return static_cast<int>(
            std::count_if(result.findings.begin(), result.findings.end(),
                          [level](const Finding& finding) { return finding.level == level; }));
    };
    const QString extent =
        QStringLiteral("a search of %1 situations in %2 steps")
            .arg(SearchWords::grouped(result.situations), SearchWords::grouped(result.steps));
    const QString rows = result.provedRows == result.rows
                             ? QString()
                             : QStringLiteral(" for ") + counted(result.provedRows, QStringLiteral("row"));
    const QString proof = !result.isProved         ? QStringLiteral("Not all is proved by %1").arg(extent)
                          : result.provedRows == 0 ? QStringLiteral("Nothing was proved")
                                                   : QStringLiteral("Proved%1 by %2").arg(rows, extent);
    return QStringLiteral("%1: %2, %3, %4. %5.\n")
               .arg(counted(result.rows, QStringLiteral("row")),
                    counted(countOf(Level::Error), QStringLiteral("error")),
                    counted(countOf(Level::Warning), QStringLiteral("warning")),
                    counted(countOf(Level::Note), QStringLiteral("note")), proof) +
           unsearchedIn(result);
}

/// A line for each file with rows that were not searched.
QString FindingText::unsearchedIn(const CheckResult& result) const
{
    constexpr int maxNamed = 10;
    QString text;
    for (const model::List list : model::allLists) {
        QStringList rows;
        int others = 0;
        for (const auto& [row, id] : result.unsearched) {
            if (row.list == list && rows.size() < maxNamed) {
                rows.append(QStringLiteral("row %1 (%2)").arg(row.index + 1).arg(id));
            } else if (row.list == list) {
                ++others;
            }
        }
        if (others > 0) {
            rows.append(counted(others, QStringLiteral("other")));
        }
        const QString file = printable(m_sources.file(list).name());
        if (!rows.isEmpty()) {
            text += QStringLiteral("Not searched in %1: %2.\n").arg(file, OutputWords::enumeration(rows));
        }
        if (result.unreadable.contains(list)) {
            text += QStringLiteral("Not searched: %1, which has no readable list.\n").arg(file);
        }
    }
    return text;
}

} // namespace checker

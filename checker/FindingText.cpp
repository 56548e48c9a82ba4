// SPDX-License-Identifier: MIT
#include "checker/FindingText.h"

#include "checker/Printable.h"

#include <QLocale>

#include <algorithm>

namespace checker {

namespace {

constexpr int maxWidth = 100; // of an excerpt

int widthOf(const QString& text)
{
    return text.toUcs4().size();
}

QString number(quint64 value)
{
    return QLocale(QLocale::English).toString(value);
}

QString blanks(int count)
{
    return QString(count, QLatin1Char(' '));
}

QString count(int value, const QString& noun)
{
    return QStringLiteral("%1 %2%3").arg(value).arg(noun, value == 1 ? QString() : QStringLiteral("s"));
}

QString sentenceOn(const ProofNote& note)
{
    const QString extent = QStringLiteral("%1, %2 situations, %3 steps")
                               .arg(note.proof.environment.toText(), number(note.proof.situations),
                                    number(note.proof.steps));
    return note.proof.isComplete ? QStringLiteral("proved: %1; none announces it").arg(extent)
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
    const SourceFile& file = m_sources.file(finding.place.list);
    const Position position = file.positionOf(finding.place.range.begin);
    int lastLine = position.line;
    for (const Place& place : finding.related) {
        lastLine = qMax(lastLine, file.positionOf(place.range.begin).line);
    }
    const int margin = QString::number(lastLine).size();
    QString text = heading(finding);
    text += QStringLiteral("%1--> %2:%3:%4\n")
                .arg(blanks(margin + 1), printable(file.name()))
                .arg(position.line)
                .arg(position.column);
    text += excerpts(finding, margin);
    if (finding.proof) {
        text += QStringLiteral("%1= %2\n").arg(blanks(margin + 2), sentenceOn(*finding.proof));
    }
    if (!finding.help.isEmpty()) {
        text += QStringLiteral("%1= help: %2\n").arg(blanks(margin + 2), printable(finding.help));
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

QString FindingText::excerpts(const Finding& finding, int margin) const
{
    const SourceFile& file = m_sources.file(finding.place.list);
    QVector<QPair<Place, QChar>> places{{finding.place, QLatin1Char('^')}};
    for (const Place& place : finding.related) {
        places.append({place, QLatin1Char('-')});
    }
    std::stable_sort(places.begin(), places.end(),
                     [](const auto& a, const auto& b) { return a.first.range.begin < b.first.range.begin; });
    QString text = QStringLiteral("%1|\n").arg(blanks(margin + 2));
    int shownLine = 0;
    for (const auto& [place, mark] : qAsConst(places)) {
        const int line = file.positionOf(place.range.begin).line;
        if (shownLine != 0 && line > shownLine + 1) {
            text += QStringLiteral("%1...\n").arg(blanks(margin + 2));
        }
        shownLine = line;
        text += excerpt(place, mark, margin);
    }
    return text;
}

/// The line of the place, from where the place is shown, with marks below.
QString FindingText::excerpt(const Place& place, QChar mark, int margin) const
{
    const SourceFile& file = m_sources.file(place.list);
    const Position position = file.positionOf(place.range.begin);
    const QString line = file.line(position.line);
    const QString marked = file.textOf(place.range).section(QLatin1Char('\n'), 0, 0).remove(QLatin1Char('\r'));
    const QString before = QString::fromUcs4(line.toUcs4().constData(), position.column - 1);
    constexpr int maxBefore = 40;
    const bool isCut = widthOf(printable(before)) > maxBefore && widthOf(printable(line)) > maxWidth;
    const QString lead = isCut ? QStringLiteral("...") + printable(before).right(maxBefore) : printable(before);
    const QString shown = lead + printable(line.mid(before.size()));
    const int marks = qBound(1, widthOf(printable(marked)), maxWidth - widthOf(lead) + 3);
    const QString cutLine = widthOf(shown) > maxWidth ? shown.left(maxWidth - 3) + QStringLiteral("...") : shown;
    QString text = QStringLiteral(" %1 | %2\n").arg(position.line, margin).arg(cutLine);
    text += QStringLiteral("%1| %2%3").arg(blanks(margin + 2), blanks(widthOf(lead)), QString(marks, mark));
    const QString remark = place.remark.isEmpty() ? QString() : QLatin1Char(' ') + printable(place.remark);
    return text + remark + QLatin1Char('\n');
}

QString FindingText::summary(const CheckResult& result) const
{
    const auto countOf = [&](Level level) {
        return static_cast<int>(std::count_if(result.findings.begin(), result.findings.end(),
                                              [level](const Finding& finding) { return finding.level == level; }));
    };
    const int rows = m_sources.lists(false).ids().size();
    return QStringLiteral("%1: %2, %3, %4. %5 by a search of %6 situations in %7 steps.\n")
        .arg(count(rows, QStringLiteral("row")), count(countOf(Level::Error), QStringLiteral("error")),
             count(countOf(Level::Warning), QStringLiteral("warning")),
             count(countOf(Level::Note), QStringLiteral("note")),
             result.isProved ? QStringLiteral("Proved") : QStringLiteral("Not all is proved"),
             number(result.situations), number(result.steps));
}

} // namespace checker

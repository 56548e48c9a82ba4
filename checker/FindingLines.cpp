// SPDX-License-Identifier: MIT
#include "checker/FindingLines.h"

#include "checker/FindingText.h"
#include "checker/Printable.h"

namespace checker {

namespace {

QString lineOf(const Place& place, const QString& kind, const QString& sentence, const ListSources& sources)
{
    const SourceFile& file = sources.file(place.list);
    const Position position = file.position(place.range.begin);
    return QStringLiteral("%1:%2:%3: %4: %5\n")
        .arg(printable(file.name()), QString::number(position.line), QString::number(position.column), kind,
             printable(sentence));
}

} // namespace

QString FindingLines::of(const Finding& finding, const ListSources& sources)
{
    const QString remark =
        finding.place.remark.isEmpty() ? QString() : QStringLiteral(": ") + finding.place.remark;
    QString text =
        lineOf(finding.place, nameOf(finding.level),
               finding.message + remark + QStringLiteral(" [") + finding.id + QLatin1Char(']'), sources);
    for (const Place& place : finding.related) {
        if (!place.remark.isEmpty()) {
            text += lineOf(place, nameOf(Level::Note), place.remark, sources);
        }
    }
    if (!finding.help.isEmpty()) {
        text += lineOf(finding.place, QStringLiteral("help"),
                       finding.help + (finding.mend ? QStringLiteral(" (--fix)") : QString()), sources);
    }
    return text;
}

} // namespace checker

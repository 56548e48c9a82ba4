// SPDX-License-Identifier: MIT
#include "checker/Printable.h"

#include <QStringList>

#include <algorithm>

#include <unistd.h>

namespace checker {

namespace {

/// Line and paragraph separators are visible for Qt, but would break a line.
bool isPrintable(uint character)
{
    const auto category = QChar::category(character);
    return QChar::isPrint(character) && category != QChar::Separator_Line &&
           category != QChar::Separator_Paragraph;
}

QString escaped(QChar unit)
{
    constexpr int digits = 4;
    constexpr int base = 16;
    return QStringLiteral("\\u%1").arg(unit.unicode(), digits, base, QLatin1Char('0'));
}

} // namespace

QString printable(const QString& text)
{
    const auto isPlain = [](QChar unit) { return unit >= QLatin1Char(' ') && unit <= QLatin1Char('~'); };
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        return text;
    }
    QString result;
    for (int i = 0; i < text.size(); ++i) {
        const QChar unit = text.at(i);
        const bool isPair = unit.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        const uint character = isPair ? QChar::surrogateToUcs4(unit, text.at(i + 1)) : unit.unicode();
        const QString units = text.mid(i, isPair ? 2 : 1);
        if (unit == QLatin1Char('\t')) {
            result += QLatin1Char(' ');
        } else if (isPrintable(character)) {
            result += units;
        } else {
            for (const QChar each : units) {
                result += escaped(each);
            }
        }
        i += units.size() - 1;
    }
    return result;
}

QString printableJson(const QByteArray& json)
{
    QStringList lines = QString::fromUtf8(json).split(QLatin1Char('\n'));
    for (QString& line : lines) {
        line = printable(line);
    }
    return lines.join(QLatin1Char('\n'));
}

bool hasColours()
{
    return isatty(STDOUT_FILENO) != 0 && qEnvironmentVariableIsEmpty("NO_COLOR");
}

} // namespace checker

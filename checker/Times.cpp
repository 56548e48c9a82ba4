// SPDX-License-Identifier: MIT
#include "checker/Times.h"

namespace checker {

namespace {

constexpr int columnWidth = 8;

QString seconds(std::chrono::milliseconds time)
{
    constexpr int decimals = 3;
    constexpr double millisecondsPerSecond = 1000;
    return QString::number(static_cast<double>(time.count()) / millisecondsPerSecond, 'f', decimals);
}

} // namespace

QString Times::duration(std::chrono::milliseconds time)
{
    QString text = seconds(time);
    while (text.endsWith(QLatin1Char('0'))) {
        text.chop(1);
    }
    if (text.endsWith(QLatin1Char('.'))) {
        text.chop(1);
    }
    return text + QStringLiteral(" s");
}

QString Times::sinceStart(std::chrono::milliseconds time)
{
    return seconds(time).rightJustified(columnWidth);
}

} // namespace checker

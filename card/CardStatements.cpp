// SPDX-License-Identifier: MIT
#include "card/CardStatements.h"

namespace {

constexpr int chordTime = 100; // milliseconds from the first key of a shortcut to the second
/// A key is held this much longer than the entry says, because repetitions may come late on a real clock.
constexpr int holdMargin = 100; // milliseconds

QStringList shortcut(const QString& opening, const QString& closing)
{
    const bool isOneKey = opening == closing;
    QStringList lines{QStringLiteral("press ") + opening, QStringLiteral("wait %1").arg(chordTime)};
    lines += isOneKey ? QStringList{QStringLiteral("device 1")} : QStringList();
    lines += QStringLiteral("tap ") + closing;
    lines += isOneKey ? QStringList{QStringLiteral("device 0")} : QStringList();
    return lines + QStringList{QStringLiteral("release ") + opening};
}

} // namespace

QStringList CardStatements::of(const KeyCardEntry& entry)
{
    switch (entry.kind) {
    case KeyCardKind::Single:
    case KeyCardKind::Combination:
        return {QStringLiteral("tap ") + entry.keys.join(QLatin1Char(' '))};
    case KeyCardKind::Shortcut:
        return shortcut(entry.keys.value(0), entry.keys.value(1));
    case KeyCardKind::Long:
    case KeyCardKind::Hold:
        break;
    }
    return {QStringLiteral("hold %1 %2").arg(entry.keys.value(0)).arg(qint64(entry.holdMs) + holdMargin)};
}

// SPDX-License-Identifier: MIT
#include "tests/target/ProcessCost.h"

#include "tests/target/Unit.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace {

int numberIn(const QString& path, const QString& line)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QRegularExpression pattern(QStringLiteral("^%1:\\s*(\\d+)").arg(line),
                                     QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = pattern.match(QString::fromLatin1(file.readAll()));
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

} // namespace

namespace ProcessCost {

int memoryKib(int process, const QString& line)
{
    return numberIn(QStringLiteral("/proc/%1/smaps_rollup").arg(process), line);
}

int voluntarySwitches(int process)
{
    const QString threads = QStringLiteral("/proc/%1/task").arg(process);
    int sum = 0;
    const QStringList names = QDir(threads).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString& thread : names) {
        sum += numberIn(threads + '/' + thread + QStringLiteral("/status"),
                        QStringLiteral("voluntary_ctxt_switches"));
    }
    return sum;
}

qint64 cpuTimeUs(const QString& unit)
{
    return Unit::property(unit, QStringLiteral("CPUUsageNSec")).toLongLong() / 1000;
}

int openFiles(int process)
{
    return QDir(QStringLiteral("/proc/%1/fd").arg(process))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
        .size();
}

} // namespace ProcessCost

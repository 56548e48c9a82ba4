// SPDX-License-Identifier: MIT
#include "tests/support/ProcessFigures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <unistd.h>

namespace {

constexpr int userTicksField = 11;
constexpr int systemTicksField = 12;

QString pathOf(qint64 process, const char* name)
{
    return QStringLiteral("/proc/%1/%2").arg(process).arg(QLatin1String(name));
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int numberIn(const QString& path, const QString& line)
{
    const QRegularExpression pattern(QStringLiteral("^%1:\\s*(\\d+)").arg(line),
                                     QRegularExpression::MultilineOption);
    const QRegularExpressionMatch match = pattern.match(QString::fromLatin1(contentOf(path)));
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

QStringList entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

namespace ProcessFigures {

int memoryKib(qint64 process, const QString& line)
{
    return numberIn(pathOf(process, "smaps_rollup"), line);
}

int peakKib(qint64 process)
{
    return numberIn(pathOf(process, "status"), QStringLiteral("VmHWM"));
}

int processorMs(qint64 process)
{
    // The fields after the name, which may contain blanks; the first is the state.
    const QList<QByteArray> fields =
        contentOf(pathOf(process, "stat")).split(')').last().simplified().split(' ');
    if (fields.size() <= systemTicksField) {
        return -1;
    }
    const long ticks = fields.at(userTicksField).toLong() + fields.at(systemTicksField).toLong();
    return int(ticks * 1000 / sysconf(_SC_CLK_TCK));
}

int voluntarySwitches(qint64 process)
{
    const QString folder = pathOf(process, "task");
    int sum = 0;
    for (const QString& thread : entriesOf(folder)) {
        // A thread that has ended counts as 0.
        sum += qMax(0, numberIn(folder + '/' + thread + QStringLiteral("/status"),
                                QStringLiteral("voluntary_ctxt_switches")));
    }
    return sum;
}

int threads(qint64 process)
{
    return entriesOf(pathOf(process, "task")).size();
}

int descriptors(qint64 process)
{
    return entriesOf(pathOf(process, "fd")).size();
}

int ownDescriptors()
{
    return descriptors(QCoreApplication::applicationPid());
}

} // namespace ProcessFigures

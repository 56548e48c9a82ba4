// SPDX-License-Identifier: MIT
#include "tests/soak/ProcessFigures.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <unistd.h>

namespace {

constexpr int userTicksField = 11;
constexpr int systemTicksField = 12;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

int kibOf(const QByteArray& rollup, const char* line)
{
    const QRegularExpression pattern(QStringLiteral("^%1:\\s*(\\d+)").arg(QLatin1String(line)),
                                     QRegularExpression::MultilineOption);
    return pattern.match(QString::fromLatin1(rollup)).captured(1).toInt();
}

int entriesOf(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

ProcessFigures ProcessFigures::of(qint64 process)
{
    const QString folder = QStringLiteral("/proc/%1/").arg(process);
    const QByteArray rollup = contentOf(folder + QStringLiteral("smaps_rollup"));
    // The fields behind the name, which may hold blanks itself; the state comes first.
    const QList<QByteArray> fields =
        contentOf(folder + QStringLiteral("stat")).split(')').last().simplified().split(' ');
    const long ticks = fields.value(userTicksField).toLong() + fields.value(systemTicksField).toLong();
    return {kibOf(rollup, "Pss"),
            kibOf(rollup, "Pss_Anon"),
            kibOf(rollup, "Rss"),
            entriesOf(folder + QStringLiteral("fd")),
            entriesOf(folder + QStringLiteral("task")),
            int(ticks * 1000 / sysconf(_SC_CLK_TCK))};
}

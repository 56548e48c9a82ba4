// SPDX-License-Identifier: MIT
#include "control/doctor/Probes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <ctime>

#include <sys/stat.h>
#include <unistd.h>

namespace control {

namespace {

constexpr qint64 millisecondsPerSecond = 1000;
constexpr qint64 nanosecondsPerMillisecond = 1'000'000;
// Of the fields after the name of the program in /proc/PROCESS/stat.
constexpr int stateField = 0;
constexpr int startField = 19;

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QByteArray> statisticsOf(qint64 id)
{
    const QByteArray line = contentOf(QStringLiteral("/proc/%1/stat").arg(id));
    // The name of the program may contain blanks and brackets.
    return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

/// The kernel counts the start of a process from the boot, in ticks. The clock may have been set since then,
/// so the difference to now counts.
QDateTime startTime(qint64 ticks)
{
    timespec boot{};
    ::clock_gettime(CLOCK_BOOTTIME, &boot);
    const qint64 sinceBoot = boot.tv_sec * millisecondsPerSecond + boot.tv_nsec / nanosecondsPerMillisecond;
    const qint64 start = ticks * millisecondsPerSecond / ::sysconf(_SC_CLK_TCK);
    return QDateTime::currentDateTime().addMSecs(start - sinceBoot);
}

} // namespace

ProcessFacts Probes::process(qint64 id)
{
    ProcessFacts facts;
    facts.id = id;
    const QList<QByteArray> statistics = statisticsOf(id);
    if (statistics.size() <= startField) {
        return facts; // ended meanwhile
    }
    facts.state = QLatin1Char(statistics.at(stateField).at(0));
    facts.started = startTime(statistics.at(startField).toLongLong());
    const QDir folder(QStringLiteral("/proc/%1/fd").arg(id));
    if (::access(QFile::encodeName(folder.path()).constData(), R_OK | X_OK) != 0) {
        return facts;
    }
    facts.files.emplace();
    const QStringList descriptors = folder.entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System);
    for (const QString& descriptor : descriptors) {
        const QByteArray path = QFile::encodeName(folder.filePath(descriptor));
        struct stat status
        {};
        if (::stat(path.constData(), &status) == 0) {
            facts.files->append({status.st_dev, status.st_ino});
        }
        char target[PATH_MAX];
        const ssize_t length = ::readlink(path.constData(), target, sizeof target);
        facts.fileNames.append(
            QString::fromLocal8Bit(target, static_cast<int>(std::max<ssize_t>(length, 0))));
    }
    return facts;
}

QDateTime Probes::readyTime()
{
    const QFileInfo file(QStringLiteral("/run/service-watcher/keyboard-handler"));
    return file.exists() ? file.lastModified() : QDateTime();
}

} // namespace control

// SPDX-License-Identifier: MIT
#include "control/RunningDaemon.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace control {

namespace {

/// The kernel keeps 15 bytes of the name.
const QByteArray processName = QByteArrayLiteral("keyboard-handle\n");

bool isDaemon(const QString& process)
{
    QFile name(QStringLiteral("/proc/%1/comm").arg(process));
    if (!name.open(QIODevice::ReadOnly) || name.readAll() != processName) {
        return false;
    }
    // The tools have the same first 15 bytes.
    QFile commandLine(QStringLiteral("/proc/%1/cmdline").arg(process));
    commandLine.open(QIODevice::ReadOnly);
    const QByteArray program = commandLine.readAll().split('\0').first();
    return program.mid(program.lastIndexOf('/') + 1) == "keyboard-handler";
}

} // namespace

QVector<qint64> RunningDaemon::processes()
{
    QVector<qint64> daemons;
    const QStringList entries =
        QDir(QStringLiteral("/proc")).entryList({QStringLiteral("[0-9]*")}, QDir::Dirs);
    for (const QString& entry : entries) {
        if (isDaemon(entry)) {
            daemons.append(entry.toLongLong());
        }
    }
    std::sort(daemons.begin(), daemons.end());
    return daemons;
}

bool RunningDaemon::isThere()
{
    return !processes().isEmpty();
}

QStringList RunningDaemon::awaitedServices()
{
    QStringList services{QStringLiteral("state-handler"), QStringLiteral("speechd")};
    const auto isReady = [](const QString& service) {
        return QFileInfo::exists(QStringLiteral("/run/service-watcher/") + service);
    };
    services.erase(std::remove_if(services.begin(), services.end(), isReady), services.end());
    return services;
}

} // namespace control

// SPDX-License-Identifier: MIT
#include <servicewatcher/ServiceWatcher.h>

#include "FolderWatch.h"

#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QString>

#include <systemd/sd-daemon.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace ServiceWatcher {

namespace {

constexpr char parentFolder[] = "/run";
constexpr char readinessFolder[] = "/run/service-watcher";
constexpr mode_t fileMode = 0666;
constexpr std::chrono::milliseconds maxWait = 1000ms;
constexpr std::chrono::milliseconds pollInterval = 50ms;

// A name with a slash, "." and ".." would reach files outside the folder.
bool isFileName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar::Null);
}

// Empty for an invalid name.
QString readinessFile(const QString& name)
{
    return isFileName(name) ? QLatin1String(readinessFolder) + QLatin1Char('/') + name : QString();
}

QString reason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// An action on a file returns 0 or an error number.
using Action = int (*)(int folder, const char* name);

int createFile(int folder, const char* name)
{
    const int file = ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode);
    if (file != -1) {
        ::close(file);
        return 0;
    }
    // An existing entry is not opened, because a FIFO would block.
    const int error = errno;
    struct stat status = {};
    const bool isRegular =
        ::fstatat(folder, name, &status, AT_SYMLINK_NOFOLLOW) == 0 && S_ISREG(status.st_mode);
    return error == EEXIST && isRegular ? 0 : error;
}

int removeFile(int folder, const char* name)
{
    return ::unlinkat(folder, name, 0) == 0 ? 0 : errno;
}

// Refuses a link in place of the folder: through it, root would create or remove files elsewhere.
int inFolder(Action action, const QString& name)
{
    const int folder = ::open(readinessFolder, O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder == -1) {
        return errno;
    }
    const int error = action(folder, QFile::encodeName(name).constData());
    ::close(folder);
    return error;
}

void declare(const QString& name)
{
    QDir().mkpath(QLatin1String(readinessFolder));
    const int error = inFolder(createFile, name);
    if (error != 0) {
        qCritical() << "ServiceWatcher::setReady ERROR: creating" << readinessFile(name)
                    << "failed:" << reason(error);
    }
}

void withdraw(const QString& name)
{
    const int error = inFolder(removeFile, name);
    const bool isMissing = error == ENOENT || error == ENOTDIR;
    if (error != 0 && !isMissing) {
        qCritical() << "ServiceWatcher::setReady ERROR: removing" << readinessFile(name)
                    << "failed:" << reason(error);
    }
}

void notifyServiceManager()
{
    const int result = sd_notify(0, "READY=1");
    if (result < 0) {
        qCritical() << "ServiceWatcher::setReady ERROR: notifying the service manager failed:"
                    << reason(-result);
    }
}

} // namespace

bool isReady(const QString& name)
{
    const QString path = readinessFile(name);
    if (QFile::exists(path)) {
        return true;
    }
    thread_local FolderWatch watch(readinessFolder, parentFolder);
    const QDeadlineTimer deadline(maxWait);
    for (;;) {
        // Watching before checking, so that a file cannot appear unnoticed in between.
        const bool isWatched = watch.renew();
        if (QFile::exists(path)) {
            return true;
        }
        const std::chrono::milliseconds rest(deadline.remainingTime());
        if (rest == 0ms) {
            return false;
        }
        watch.wait(isWatched ? rest : std::min(rest, pollInterval));
    }
}

void setReady(const QString& name, bool ready)
{
    if (!isFileName(name)) {
        qCritical() << "ServiceWatcher::setReady ERROR: invalid service name" << name;
    } else if (!ready) {
        withdraw(name);
    } else {
        declare(name);
        // Even without the file: the service is running, and the service manager would stop it otherwise.
        notifyServiceManager();
    }
}

} // namespace ServiceWatcher

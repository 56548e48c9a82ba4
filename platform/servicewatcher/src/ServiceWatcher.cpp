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
constexpr std::chrono::milliseconds maxHold = 1000ms;
constexpr std::chrono::milliseconds lookInterval = 50ms;

// A name with a slash, and a dot name, would reach files outside the folder.
bool isFileName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar::Null);
}

// Empty for a name that no service can have.
QString readinessFile(const QString& name)
{
    return isFileName(name) ? QLatin1String(readinessFolder) + QLatin1Char('/') + name : QString();
}

QString reason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

// The actions on a file return 0 or what went wrong.
using Action = int (*)(int folder, const char* name);

int createFile(int folder, const char* name)
{
    const int file = ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, fileMode);
    if (file != -1) {
        ::close(file);
        return 0;
    }
    // What has the name already is not opened: a FIFO would wait for a reader.
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

// A folder that is a link is refused, because root would write or remove files in another one.
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
    const QDeadlineTimer deadline(maxHold);
    for (;;) {
        // The watch comes before the look, so that no file appears unseen between the two.
        const bool isWatched = watch.renew();
        if (QFile::exists(path)) {
            return true;
        }
        const std::chrono::milliseconds rest(deadline.remainingTime());
        if (rest == 0ms) {
            return false;
        }
        watch.wait(isWatched ? rest : std::min(rest, lookInterval));
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
        // Even without the file: the service does run, and the service manager would end it otherwise.
        notifyServiceManager();
    }
}

} // namespace ServiceWatcher

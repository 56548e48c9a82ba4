// SPDX-License-Identifier: MIT
#include <servicewatcher/ServiceWatcher.h>

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QString>

#include <systemd/sd-daemon.h>

#include <chrono>
#include <cstring>
#include <thread>

using namespace std::chrono_literals;

namespace ServiceWatcher {

namespace {

constexpr auto longestHold = 50ms;
constexpr auto holdStep = 5ms;

QString folder()
{
    return QStringLiteral("/run/service-watcher");
}

// A name with a slash, and a dot name, would reach files outside the folder.
bool isFileName(const QString& name)
{
    return !name.isEmpty() && name != QLatin1String(".") && name != QLatin1String("..") &&
           !name.contains(QLatin1Char('/')) && !name.contains(QChar::Null);
}

// Empty for a name that no service can have.
QString readinessFile(const QString& name)
{
    return isFileName(name) ? folder() + QLatin1Char('/') + name : QString();
}

void createFile(const QString& path)
{
    QDir().mkpath(folder());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        qCritical() << "ServiceWatcher::setReady ERROR: creating" << path << "failed:" << file.errorString();
    }
}

void removeFile(const QString& path)
{
    QFile file(path);
    if (!file.remove() && file.exists()) {
        qCritical() << "ServiceWatcher::setReady ERROR: removing" << path << "failed:" << file.errorString();
    }
}

void notifyServiceManager()
{
    const int result = sd_notify(0, "READY=1");
    if (result < 0) {
        qCritical() << "ServiceWatcher::setReady ERROR: notifying the service manager failed:"
                    << QString::fromLocal8Bit(std::strerror(-result));
    }
}

} // namespace

bool isReady(const QString& name)
{
    // Callers ask again and again without a pause while other services start on the same processor.
    const QString path = readinessFile(name);
    for (auto held = 0ms; held < longestHold; held += holdStep) {
        if (QFile::exists(path)) {
            return true;
        }
        std::this_thread::sleep_for(holdStep);
    }
    return QFile::exists(path);
}

void setReady(const QString& name, bool ready)
{
    const QString path = readinessFile(name);
    if (path.isEmpty()) {
        qCritical() << "ServiceWatcher::setReady ERROR: invalid service name" << name;
    } else if (!ready) {
        removeFile(path);
    } else {
        createFile(path);
        // Even without the file: the service does run, and the service manager would end it otherwise.
        notifyServiceManager();
    }
}

} // namespace ServiceWatcher

// SPDX-License-Identifier: MIT
#include <ls/Timer.h>

#include <QElapsedTimer>
#include <QHash>
#include <QLoggingCategory>

namespace ls {

namespace {

Q_LOGGING_CATEGORY(timerCategory, "Timer", QtCriticalMsg)

QHash<QString, QElapsedTimer>& runningTimers()
{
    static QHash<QString, QElapsedTimer> timers;
    return timers;
}

} // namespace

void Timer::start(const QString& name)
{
    runningTimers()[name].start();
}

void Timer::finish(const QString& name)
{
    const QElapsedTimer timer = runningTimers().take(name);
    if (timer.isValid()) {
        qCDebug(timerCategory) << name << "took" << timer.elapsed() << "ms";
    }
}

} // namespace ls

// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"

#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

using namespace std::chrono_literals;

namespace {

/// Conditions without an event, such as files, are polled at this interval.
constexpr std::chrono::milliseconds pollInterval = 10ms;

/// Processes events for up to `pollInterval`, so that a flood of events does not check a costly condition
/// each time.
void processEvents()
{
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents(QEventLoop::AllEvents, int(pollInterval.count()));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

void Waiting::until(const std::function<bool()>& holds, const std::function<QByteArray()>& state,
                    const Place& place, std::chrono::milliseconds reminderTime)
{
    QTimer wake;
    wake.start(pollInterval);
    QElapsedTimer sinceReminder;
    sinceReminder.start();
    while (!holds()) {
        if (sinceReminder.hasExpired(reminderTime.count())) {
            // Not through the log, which a test may compare.
            std::printf("Still waiting at %s:%d for %s: %s\n", place.file, place.line, place.condition,
                        state().constData());
            std::fflush(stdout);
            sinceReminder.start();
        }
        processEvents();
    }
}

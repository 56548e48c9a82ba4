// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"

#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>

using namespace std::chrono_literals;

namespace {

/// What no event tells of, such as a file, is looked at so often.
constexpr std::chrono::milliseconds lookInterval = 10ms;

/// Runs the event loop until something has happened, and lets a flood go by before the next, costly look.
void processEvents()
{
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QCoreApplication::processEvents(QEventLoop::AllEvents, int(lookInterval.count()));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

void Waiting::until(const std::function<bool()>& holds, const std::function<QByteArray()>& state,
                    const Place& place, std::chrono::milliseconds reminderTime)
{
    QTimer wake;
    wake.start(lookInterval);
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

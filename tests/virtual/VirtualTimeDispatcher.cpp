// SPDX-License-Identifier: MIT
#include "tests/virtual/VirtualTimeDispatcher.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimerEvent>
#include <QVarLengthArray>

#include <algorithm>

#include <poll.h>

using std::chrono::milliseconds;

namespace {

pollfd descriptorOf(const QSocketNotifier& notifier)
{
    const bool reads = notifier.type() == QSocketNotifier::Read;
    return {static_cast<int>(notifier.socket()), static_cast<short>(reads ? POLLIN : POLLOUT), 0};
}

} // namespace

VirtualTimeDispatcher::VirtualTimeDispatcher(QObject* parent) : QAbstractEventDispatcher(parent) {}

VirtualTimeDispatcher::~VirtualTimeDispatcher() = default;

void VirtualTimeDispatcher::advance(milliseconds duration)
{
    const milliseconds end = m_now + duration;
    settle();
    while (fireNextTimer(end)) {
        settle();
    }
    m_now = end;
}

void VirtualTimeDispatcher::settle()
{
    do {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    } while (handleDescriptors());
}

bool VirtualTimeDispatcher::processEvents(QEventLoop::ProcessEventsFlags flags)
{
    settle();
    // Time advances only for callers that wait for events.
    if (flags.testFlag(QEventLoop::WaitForMoreEvents) && !m_timers.isEmpty()) {
        fireNextTimer(m_timers.first().deadline);
        settle();
    }
    return true;
}

bool VirtualTimeDispatcher::hasPendingEvents()
{
    return !m_timers.isEmpty() && m_timers.first().deadline <= m_now;
}

void VirtualTimeDispatcher::registerSocketNotifier(QSocketNotifier* notifier)
{
    m_notifiers.append(notifier);
}

void VirtualTimeDispatcher::unregisterSocketNotifier(QSocketNotifier* notifier)
{
    m_notifiers.removeAll(notifier);
}

void VirtualTimeDispatcher::registerTimer(int timerId, int interval, Qt::TimerType timerType, QObject* object)
{
    insert({timerId, milliseconds(interval), timerType, object, m_now + milliseconds(interval)});
}

bool VirtualTimeDispatcher::unregisterTimer(int timerId)
{
    const auto timer = find(timerId);
    if (timer == m_timers.end()) {
        return false;
    }
    m_timers.erase(timer);
    return true;
}

bool VirtualTimeDispatcher::unregisterTimers(QObject* object)
{
    const auto belongs = [object](const Timer& timer) { return timer.object == object; };
    const auto end = std::remove_if(m_timers.begin(), m_timers.end(), belongs);
    const bool found = end != m_timers.end();
    m_timers.erase(end, m_timers.end());
    return found;
}

QList<QAbstractEventDispatcher::TimerInfo> VirtualTimeDispatcher::registeredTimers(QObject* object) const
{
    QList<TimerInfo> infos;
    for (const Timer& timer : m_timers) {
        if (timer.object == object) {
            infos.append(TimerInfo(timer.id, static_cast<int>(timer.interval.count()), timer.type));
        }
    }
    return infos;
}

int VirtualTimeDispatcher::remainingTime(int timerId)
{
    const auto timer = find(timerId);
    return timer == m_timers.end() ? -1 : static_cast<int>((timer->deadline - m_now).count());
}

bool VirtualTimeDispatcher::handleDescriptors()
{
    if (!isAnyDescriptorReady()) {
        return false;
    }
    bool handled = false;
    const QList<QPointer<QSocketNotifier>> notifiers(m_notifiers.cbegin(), m_notifiers.cend());
    for (const QPointer<QSocketNotifier>& notifier : notifiers) {
        if (!notifier || !m_notifiers.contains(notifier)) {
            continue;
        }
        pollfd descriptor = descriptorOf(*notifier);
        if (::poll(&descriptor, 1, 0) == 1) {
            QEvent event(QEvent::SockAct);
            QCoreApplication::sendEvent(notifier, &event);
            handled = true;
        }
    }
    return handled;
}

// An optimisation: usually none is ready, and one call suffices.
bool VirtualTimeDispatcher::isAnyDescriptorReady() const
{
    QVarLengthArray<pollfd, 8> descriptors;
    for (const QSocketNotifier* notifier : m_notifiers) {
        descriptors.append(descriptorOf(*notifier));
    }
    return ::poll(descriptors.data(), static_cast<nfds_t>(descriptors.size()), 0) > 0;
}

bool VirtualTimeDispatcher::fireNextTimer(milliseconds limit)
{
    if (m_timers.isEmpty() || m_timers.first().deadline > limit) {
        return false;
    }
    Timer timer = m_timers.takeFirst();
    m_now = std::max(m_now, timer.deadline);
    timer.deadline = m_now + timer.interval;
    insert(timer); // all timers repeat until unregistered; single-shot ones unregister when they fire
    QTimerEvent event(timer.id);
    QCoreApplication::sendEvent(timer.object, &event);
    return true;
}

void VirtualTimeDispatcher::insert(const Timer& timer)
{
    const auto isLater = [](const Timer& a, const Timer& b) { return a.deadline < b.deadline; };
    m_timers.insert(std::upper_bound(m_timers.begin(), m_timers.end(), timer, isLater), timer);
}

QList<VirtualTimeDispatcher::Timer>::iterator VirtualTimeDispatcher::find(int timerId)
{
    return std::find_if(m_timers.begin(), m_timers.end(),
                        [timerId](const Timer& t) { return t.id == timerId; });
}

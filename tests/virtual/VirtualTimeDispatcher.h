// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractEventDispatcher>
#include <QHash>
#include <QList>

#include <chrono>

/// An event dispatcher with a virtual clock, which only the test advances.
///
/// Timers fire exactly at their deadlines, those with equal deadlines in the order in which they were
/// started. Posted events and readable descriptors are handled before the clock advances and after each
/// timer. Must be installed before the application object is created.
class VirtualTimeDispatcher : public QAbstractEventDispatcher
{
    Q_OBJECT

public:
    explicit VirtualTimeDispatcher(QObject* parent = nullptr);
    ~VirtualTimeDispatcher() override;

    /// The time since this dispatcher was created.
    std::chrono::milliseconds now() const { return m_now; }
    /// The number of running timers.
    int timerCount() const { return m_timers.size(); }
    /// Advances the clock by `duration` and fires all timers that become due, even new ones.
    void advance(std::chrono::milliseconds duration);
    /// Handles everything that is due now, without advancing the clock.
    void settle();

    bool processEvents(QEventLoop::ProcessEventsFlags flags) override;
    bool hasPendingEvents() override;
    void registerSocketNotifier(QSocketNotifier* notifier) override;
    void unregisterSocketNotifier(QSocketNotifier* notifier) override;
    void registerTimer(int timerId, int interval, Qt::TimerType timerType, QObject* object) override;
    bool unregisterTimer(int timerId) override;
    bool unregisterTimers(QObject* object) override;
    QList<TimerInfo> registeredTimers(QObject* object) const override;
    int remainingTime(int timerId) override;
    void wakeUp() override {}
    void interrupt() override {}
    void flush() override {}

private:
    struct Timer
    {
        int id;
        std::chrono::milliseconds interval;
        Qt::TimerType type;
        QObject* object;
        std::chrono::milliseconds deadline;
    };

    bool handleDescriptors();
    bool isAnyDescriptorReady() const;
    bool fireNextTimer(std::chrono::milliseconds limit);
    void insert(const Timer& timer);
    QList<Timer>::iterator find(int timerId);

    std::chrono::milliseconds m_now{0};
    QList<Timer> m_timers; // by deadline
    QList<QSocketNotifier*> m_notifiers;
};

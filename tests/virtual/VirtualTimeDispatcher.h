// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractEventDispatcher>
#include <QHash>
#include <QList>

#include <chrono>

/// An event dispatcher with a clock of its own, which stands still unless a test moves it.
///
/// Timers fire in the order of their deadlines (those of the same deadline in the order in which they were
/// set), at exactly their deadline. Posted events and readable descriptors are handled before the clock
/// moves on and after each timer. To be installed before the application object is made.
class VirtualTimeDispatcher : public QAbstractEventDispatcher
{
    Q_OBJECT

public:
    explicit VirtualTimeDispatcher(QObject* parent = nullptr);
    ~VirtualTimeDispatcher() override;

    /// The time since this dispatcher was made.
    std::chrono::milliseconds now() const { return m_now; }
    /// How many timers run.
    int timerCount() const { return m_timers.size(); }
    /// Moves the clock on by `duration` and fires all timers that fall due, also those set meanwhile.
    void advance(std::chrono::milliseconds duration);
    /// Handles everything that is due now, without moving the clock.
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
    bool isAnyReady() const;
    bool fireNextTimer(std::chrono::milliseconds limit);
    void insert(const Timer& timer);
    QList<Timer>::iterator find(int timerId);

    std::chrono::milliseconds m_now{0};
    QList<Timer> m_timers; // by deadline
    QList<QSocketNotifier*> m_notifiers;
};

// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

/// Threads that do one piece of work each. They need no file descriptors, unlike those of Qt, which end the
/// program when there is none left.
///
/// The functions are called on one thread.
class WorkerThreads
{
public:
    WorkerThreads() = default;
    /// Waits for all.
    ~WorkerThreads();
    WorkerThreads(const WorkerThreads&) = delete;
    WorkerThreads& operator=(const WorkerThreads&) = delete;

    /// Has `work`, which must not throw, done on a thread of its own; false when the system has none to
    /// spare.
    bool start(const std::function<void()>& work);
    /// Whether all are done after this time at most.
    bool waitForDone(std::chrono::milliseconds patience);

private:
    struct Worker
    {
        std::thread thread;
        bool done = false;
    };

    void joinDone();

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::list<Worker> m_workers;
};

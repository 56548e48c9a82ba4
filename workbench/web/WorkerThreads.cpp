// SPDX-License-Identifier: MIT
#include "workbench/web/WorkerThreads.h"

#include <algorithm>
#include <system_error>

WorkerThreads::~WorkerThreads()
{
    for (Worker& worker : m_workers) {
        worker.thread.join();
    }
}

bool WorkerThreads::start(const std::function<void()>& work)
{
    joinDone();
    const std::lock_guard lock(m_mutex);
    Worker& worker = m_workers.emplace_back();
    try {
        worker.thread = std::thread([this, work, &worker] {
            work();
            const std::lock_guard workerLock(m_mutex);
            worker.done = true;
            m_changed.notify_one();
        });
    } catch (const std::system_error&) {
        m_workers.pop_back();
        return false;
    }
    return true;
}

bool WorkerThreads::waitForDone(std::chrono::milliseconds patience)
{
    std::unique_lock lock(m_mutex);
    return m_changed.wait_for(lock, patience, [this] {
        return std::all_of(m_workers.begin(), m_workers.end(),
                           [](const Worker& worker) { return worker.done; });
    });
}

void WorkerThreads::joinDone()
{
    const std::lock_guard lock(m_mutex);
    m_workers.remove_if([](Worker& worker) {
        if (worker.done) {
            worker.thread.join();
        }
        return worker.done;
    });
}

// SPDX-License-Identifier: MIT
#include "workbench/web/BackgroundWork.h"

#include <system_error>

void BackgroundWork::start(const std::function<Continuation()>& work)
{
    const auto thread = m_threads.emplace(m_threads.end());
    const auto run = [this, work, thread] {
        const auto finish = [this, thread, continuation = work()] {
            m_threads.erase(thread);
            continuation();
        };
        QMetaObject::invokeMethod(this, finish, Qt::QueuedConnection);
    };
    try {
        *thread = std::async(std::launch::async, run);
    } catch (const std::system_error&) {
        // The system has no thread to spare.
        run();
    }
}

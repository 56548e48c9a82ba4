// SPDX-License-Identifier: MIT
#include "workbench/web/MainThreadCalls.h"

void MainThreadCalls::post(const std::function<void()>& work)
{
    const std::lock_guard lock(m_mutex);
    if (m_context) {
        QMetaObject::invokeMethod(m_context.get(), work, Qt::QueuedConnection);
    }
}

void MainThreadCalls::stop()
{
    std::unique_ptr<QObject> context;
    const std::lock_guard lock(m_mutex);
    context.swap(m_context);
}

// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <optional>

/// Lets other threads have work done on the thread that this object was made on.
class MainThreadCalls
{
public:
    /// Waits until `work` is done; returns what it returned, or nothing when it will never be done.
    template <typename Result>
    std::optional<Result> call(std::function<Result()> work)
    {
        auto task = std::make_shared<std::packaged_task<Result()>>(std::move(work));
        std::future<Result> result = task->get_future();
        post([task] { (*task)(); });
        // Work that is not done any more is deleted, which breaks the promise.
        task.reset();
        try {
            return result.get();
        } catch (const std::future_error&) {
            return std::nullopt;
        }
    }

    /// Does not wait.
    void post(const std::function<void()>& work);

    /// What has not begun is never done; neither is what comes later. Called on the thread of this object.
    void stop();

private:
    std::mutex m_mutex;
    std::unique_ptr<QObject> m_context = std::make_unique<QObject>();
};

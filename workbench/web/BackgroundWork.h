// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <functional>
#include <future>
#include <list>

/// Does work of seconds on other threads. These need no file descriptors, unlike those of Qt, which end the
/// program when there is none left.
class BackgroundWork : public QObject
{
    Q_OBJECT

public:
    using Continuation = std::function<void()>;

    /// Does `work`, which must not throw, on another thread, and then calls what it returns on the thread of
    /// this object; that is left out when this object is deleted before, which waits for the work.
    void start(const std::function<Continuation()>& work);

private:
    std::list<std::future<void>> m_threads;
};

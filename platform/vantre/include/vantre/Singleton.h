// SPDX-License-Identifier: MIT
#pragma once

#include <QMutex>
#include <QMutexLocker>

#include <atomic>

namespace libvantre {

/// The single `T` of the process: created without a parent on first use, in any thread, and deliberately
/// never destroyed. `T` needs a constructor that takes a parent `QObject*`.
template <typename T>
class Singleton
{
public:
    /// Never null.
    static T* instance()
    {
        T* object = s_object.load(std::memory_order_acquire);
        if (!object) {
            const QMutexLocker locker(&s_mutex);
            object = s_object.load(std::memory_order_relaxed);
            if (!object) {
                object = new T(nullptr);
                s_object.store(object, std::memory_order_release);
            }
        }
        return object;
    }

private:
    static inline QMutex s_mutex;
    static inline std::atomic<T*> s_object{nullptr};
};

} // namespace libvantre

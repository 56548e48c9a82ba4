// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace ServiceWatcher {

/// Ends a wait when an entry appears in a folder, which need not exist yet. Closing a watch takes the kernel
/// some milliseconds, so a thread that waits again and again keeps it.
class FolderWatch
{
public:
    /// Watches nothing yet. `above` is the folder in which `folder` is made; both texts must outlive this.
    FolderWatch(const char* folder, const char* above) : m_folder(folder), m_above(above) {}
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches the folder that is there now, or the one above while there is none: what changes from here on
    /// ends the next `wait()`. False when the kernel gives no watch, for whatever reason.
    bool renew();
    /// Returns when something has changed, and after `time` at the latest.
    void wait(std::chrono::milliseconds time) const;

private:
    bool add(const char* folder) const;

    const char* m_folder;
    const char* m_above;
    int m_fd = -1;
};

} // namespace ServiceWatcher

// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace ServiceWatcher {

/// Waits for a new entry in a folder, which need not exist yet. Closing a watch takes the kernel some
/// milliseconds, so a thread that waits repeatedly keeps it.
class FolderWatch
{
public:
    /// Watches nothing before `renew()`. `parent` is the folder that will contain `folder`. Both strings must
    /// outlive this object.
    FolderWatch(const char* folder, const char* parent) : m_folder(folder), m_parent(parent) {}
    ~FolderWatch();
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    /// Watches the folder, or its parent while the folder does not exist: any later change ends the next
    /// `wait()`. Returns false if the kernel provides no watch.
    bool renew();
    /// Returns after a change, and after `time` at the latest.
    void wait(std::chrono::milliseconds time) const;

private:
    bool add(const char* folder) const;

    const char* m_folder;
    const char* m_parent;
    int m_fd = -1;
};

} // namespace ServiceWatcher

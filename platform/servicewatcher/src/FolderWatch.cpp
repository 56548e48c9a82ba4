// SPDX-License-Identifier: MIT
#include "FolderWatch.h"

#include <cerrno>
#include <thread>

#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace ServiceWatcher {

namespace {

/// Limits the wake-ups that a busy folder can cause.
constexpr auto minWait = 2ms;

} // namespace

FolderWatch::~FolderWatch()
{
    if (m_fd != -1) {
        ::close(m_fd);
    }
}

bool FolderWatch::renew()
{
    if (m_fd == -1) {
        m_fd = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    }
    // The folder may have been created just before its parent was watched.
    return add(m_folder) || (add(m_parent) && (add(m_folder) || errno == ENOENT));
}

void FolderWatch::wait(std::chrono::milliseconds time) const
{
    std::this_thread::sleep_for(minWait);
    pollfd changes = {m_fd, POLLIN, 0};
    ::poll(&changes, 1, static_cast<int>(time.count()));
    char events[4096];
    while (::read(m_fd, events, sizeof events) > 0) {
    }
}

bool FolderWatch::add(const char* folder) const
{
    // The first change ends the watch, so that an unread queue does not grow. The kernel always reports the
    // removal of the folder.
    constexpr uint32_t changes = IN_CREATE | IN_MOVED_TO | IN_MOVE_SELF;
    return ::inotify_add_watch(m_fd, folder, changes | IN_ONESHOT | IN_ONLYDIR) != -1;
}

} // namespace ServiceWatcher

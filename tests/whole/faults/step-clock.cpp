// SPDX-License-Identifier: MIT
// Preloaded into the daemon: shifts its time of day by the number of seconds in the file STEP_CLOCK_FILE.
// Monotonic clocks are unchanged, as when the real clock is set.
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace {

std::int64_t secondsOff()
{
    static const volatile std::int64_t* const seconds = [] {
        const char* path = std::getenv("STEP_CLOCK_FILE");
        const int file = path == nullptr ? -1 : ::open(path, O_RDONLY | O_CLOEXEC);
        void* memory = ::mmap(nullptr, sizeof(std::int64_t), PROT_READ, MAP_SHARED, file, 0);
        ::close(file);
        return memory == MAP_FAILED ? nullptr : static_cast<const volatile std::int64_t*>(memory);
    }();
    return seconds == nullptr ? 0 : *seconds;
}

} // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept
{
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE)) {
        time->tv_sec += static_cast<time_t>(secondsOff());
    }
    return static_cast<int>(result);
}

extern "C" int gettimeofday(timeval* time, void*) noexcept
{
    timespec now{};
    const int result = clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, static_cast<suseconds_t>(now.tv_nsec / 1000)};
    return result;
}

extern "C" time_t time(time_t* seconds) noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (seconds != nullptr) {
        *seconds = now.tv_sec;
    }
    return now.tv_sec;
}

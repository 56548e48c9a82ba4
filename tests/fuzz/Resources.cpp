// SPDX-License-Identifier: MIT
#include "tests/fuzz/Resources.h"

#include "tests/fuzz/Log.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

using namespace std::chrono_literals;

// Of the address sanitizer's run-time library; absent in a build without it.
extern "C" {
__attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                                    void (*)(const volatile void*));
__attribute__((weak)) size_t __sanitizer_get_allocated_size(const volatile void*);
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

namespace {

constexpr long long mostGrown = 256 * 1024;
constexpr long long warmUpRuns = 100; // what is made on first use is no growth
constexpr auto longestLag = 10s;      // of Qt's thread for the bus, which frees what a run has given to it

std::atomic<long long> g_held{0};
thread_local bool t_counts = true;
thread_local long long t_allocated = 0;

void count(long long bytes)
{
    t_allocated += bytes;
    if (t_counts) {
        g_held += bytes;
    }
}

void onAllocated(const volatile void*, size_t size)
{
    count(static_cast<long long>(size));
}

void onFreed(const volatile void* pointer)
{
    if (pointer) {
        count(-static_cast<long long>(__sanitizer_get_allocated_size(pointer)));
    }
}

bool isWithin(long long limit)
{
    const auto end = std::chrono::steady_clock::now() + longestLag;
    while (g_held > limit && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);
    }
    return g_held <= limit;
}

int lowestFreeDescriptor()
{
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(fd);
    return fd;
}

} // namespace

Resources::Trial::Trial() : m_before(t_allocated)
{
    if (__lsan_disable) {
        __lsan_disable();
    }
}

Resources::Trial::~Trial()
{
    if (__lsan_enable) {
        __lsan_enable();
    }
}

bool Resources::Trial::hasGrown() const
{
    return t_allocated > m_before;
}

Resources::Resources()
{
    if (__sanitizer_install_malloc_and_free_hooks) {
        __sanitizer_install_malloc_and_free_hooks(onAllocated, onFreed);
    }
}

long long Resources::heldBytes()
{
    return g_held;
}

void Resources::beginRun()
{
    t_counts = true;
    m_descriptorBefore = lowestFreeDescriptor();
}

void Resources::endRun()
{
    if (++m_runs == warmUpRuns) {
        m_bytesBefore = g_held;
    } else if (m_runs > warmUpRuns) {
        Log::require(isWithin(m_bytesBefore + mostGrown), "memory does not grow from run to run");
        Log::require(lowestFreeDescriptor() == m_descriptorBefore, "no file descriptor is lost");
    }
    t_counts = false;
}

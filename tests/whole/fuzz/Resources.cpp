// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/Resources.h"

#include "tests/whole/fuzz/Log.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>

#include <poll.h>

using namespace std::chrono_literals;

// Functions of the address sanitizer's run-time library; absent in a build without it.
extern "C" {
__attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                                    void (*)(const volatile void*));
__attribute__((weak)) size_t __sanitizer_get_allocated_size(const volatile void*);
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

namespace {

constexpr long long maxGrowth = 256 * 1024;
constexpr long long warmUpRuns = 100; // objects created on first use are not leaks
constexpr auto maxLag = 10s;          // of Qt's bus thread in freeing the objects of a run

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

template <typename Condition>
bool becomesTrue(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + maxLag;
    while (!condition() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(1ms);
    }
    return condition();
}

/// The number of open low-numbered descriptors, from one system call.
int openDescriptors()
{
    std::array<pollfd, 256> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers.at(i).fd = static_cast<int>(i);
    }
    ::poll(numbers.data(), numbers.size(), 0);
    return static_cast<int>(std::count_if(numbers.cbegin(), numbers.cend(), [](const pollfd& number) {
        return (number.revents & POLLNVAL) == 0;
    }));
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
}

void Resources::endRun()
{
    if (++m_runs == warmUpRuns) {
        m_bytesBefore = g_held;
        m_descriptorsBefore = openDescriptors();
    } else if (m_runs > warmUpRuns) {
        Log::require(becomesTrue([this] { return g_held <= m_bytesBefore + maxGrowth; }),
                     "memory does not grow from run to run");
        Log::require(becomesTrue([this] { return openDescriptors() <= m_descriptorsBefore; }),
                     "no file descriptor is lost");
    }
    t_counts = false;
}

// SPDX-License-Identifier: MIT
#include "tests/fuzz/Resources.h"

#include "tests/fuzz/Log.h"

#include <cstddef>

#include <fcntl.h>
#include <unistd.h>

// Of the address sanitizer's run-time library; absent in a build without it.
extern "C" {
__attribute__((weak)) size_t __sanitizer_get_current_allocated_bytes();
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

namespace {

constexpr long long mostGrown = 1024 * 1024;
constexpr long long warmUpRuns = 100; // what is made on first use is no growth

int lowestFreeDescriptor()
{
    const int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    ::close(fd);
    return fd;
}

} // namespace

long long Resources::allocatedBytes()
{
    return __sanitizer_get_current_allocated_bytes
               ? static_cast<long long>(__sanitizer_get_current_allocated_bytes())
               : 0;
}

Resources::LeaksAreExpected::LeaksAreExpected()
{
    if (__lsan_disable) {
        __lsan_disable();
    }
}

Resources::LeaksAreExpected::~LeaksAreExpected()
{
    if (__lsan_enable) {
        __lsan_enable();
    }
}

void Resources::beginRun()
{
    m_bytesBefore = allocatedBytes();
    m_descriptorBefore = lowestFreeDescriptor();
}

void Resources::endRun()
{
    m_bytesGrown += allocatedBytes() - m_bytesBefore;
    if (++m_runs <= warmUpRuns) {
        m_bytesGrown = 0;
        return;
    }
    Log::require(m_bytesGrown < mostGrown, "memory does not grow from run to run");
    Log::require(lowestFreeDescriptor() == m_descriptorBefore, "no file descriptor is lost");
}

// SPDX-License-Identifier: MIT
#include "tests/support/Attempts.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr auto lookInterval = 1ms;
constexpr auto maxDelay = 10ms;

/// Notices when this process does not run in time.
class StallDetector
{
public:
    StallDetector() : m_thread([this, begin = Clock::now()] { watch(begin); }) {}
    ~StallDetector() { finish(); }
    StallDetector(const StallDetector&) = delete;
    StallDetector& operator=(const StallDetector&) = delete;

    /// Whether there was a stall since construction.
    bool finish()
    {
        m_isOver = true;
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return m_isDisturbed;
    }

private:
    using Clock = std::chrono::steady_clock;

    void watch(Clock::time_point last)
    {
        do {
            std::this_thread::sleep_for(lookInterval);
            const Clock::time_point now = Clock::now();
            m_isDisturbed = m_isDisturbed || now - last > lookInterval + maxDelay;
            last = now;
        } while (!m_isOver);
    }

    std::atomic_bool m_isOver{false};
    bool m_isDisturbed = false;
    std::thread m_thread;
};

} // namespace

QString Attempts::outcome(const std::function<QString()>& attempt, int maxUndisturbed)
{
    int undisturbed = 0;
    for (;;) {
        StallDetector detector;
        const QString fault = attempt();
        if (fault.isEmpty()) {
            return {};
        }
        if (!detector.finish() && ++undisturbed == maxUndisturbed) {
            return fault;
        }
        std::printf("Once more, after: %s\n", qPrintable(fault));
        std::fflush(stdout);
    }
}

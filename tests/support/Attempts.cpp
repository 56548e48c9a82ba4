// SPDX-License-Identifier: MIT
#include "tests/support/Attempts.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

using namespace std::chrono_literals;

namespace {

constexpr auto pollInterval = 1ms;
constexpr auto maxDelay = 10ms;

/// Detects delays in the scheduling of this process.
class StallDetector
{
public:
    StallDetector() : m_thread([this, begin = Clock::now()] { watch(begin); }) {}
    ~StallDetector() { finish(); }
    StallDetector(const StallDetector&) = delete;
    StallDetector& operator=(const StallDetector&) = delete;

    /// Stops, and returns whether there was a stall.
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
            std::this_thread::sleep_for(pollInterval);
            const Clock::time_point now = Clock::now();
            m_isDisturbed = m_isDisturbed || now - last > pollInterval + maxDelay;
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
        std::printf("Retrying after: %s\n", qPrintable(fault));
        std::fflush(stdout);
    }
}

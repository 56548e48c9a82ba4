// SPDX-License-Identifier: MIT
#pragma once

/// Checks that the daemon's resources do not grow from run to run: a later run must free what a run
/// allocates.
class Resources
{
public:
    /// Memory that is allocated during its lifetime and never freed does not count as a leak.
    class Trial
    {
    public:
        Trial();
        ~Trial();
        Trial(const Trial&) = delete;
        Trial& operator=(const Trial&) = delete;

        /// Whether this thread has allocated more than it has freed.
        bool hasGrown() const;

    private:
        long long m_before;
    };

    Resources();

    /// The memory allocated by all threads during runs, but not by libFuzzer between runs. 0 in a build
    /// without the address sanitizer.
    static long long heldBytes();

    /// Must be called before and after each run; aborts if resources have grown.
    void beginRun();
    void endRun();

private:
    long long m_runs = 0;
    long long m_bytesBefore = 0;
    int m_descriptorsBefore = 0;
};

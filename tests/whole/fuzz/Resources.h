// SPDX-License-Identifier: MIT
#pragma once

/// Sees to it that what the daemon holds does not grow from run to run: what one run adds, another one must
/// give back.
class Resources
{
public:
    /// What is allocated while it lives, and never freed, is not taken for a leak.
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

    /// What the daemon and what is around it hold, by all threads, but not what libFuzzer does between the
    /// runs. 0 in a build without the address sanitizer.
    static long long heldBytes();

    /// To be called before a run and after it; ends the process when too much has come together.
    void beginRun();
    void endRun();

private:
    long long m_runs = 0;
    long long m_bytesBefore = 0;
    int m_descriptorsBefore = 0;
};

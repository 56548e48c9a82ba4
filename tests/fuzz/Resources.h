// SPDX-License-Identifier: MIT
#pragma once

/// Sees to it that what the daemon holds does not grow from run to run: what one run adds, another one must
/// give back.
class Resources
{
public:
    /// What this process has allocated; 0 in a build without the address sanitizer.
    static long long allocatedBytes();

    /// What is allocated while it lives is no leak.
    class LeaksAreExpected
    {
    public:
        LeaksAreExpected();
        ~LeaksAreExpected();
        LeaksAreExpected(const LeaksAreExpected&) = delete;
        LeaksAreExpected& operator=(const LeaksAreExpected&) = delete;
    };

    /// To be called before a run and after it; ends the process when too much has come together. What happens
    /// between the runs is libFuzzer's and does not count.
    void beginRun();
    void endRun();

private:
    long long m_runs = 0;
    long long m_bytesBefore = 0;
    long long m_bytesGrown = 0;
    int m_descriptorBefore = 0;
};

// SPDX-License-Identifier: MIT
// For speed: no stack traces of allocations, and a small quarantine of freed memory, for about a run.
// ASAN_OPTIONS overrides these options.
extern "C" const char* __asan_default_options();

const char* __asan_default_options()
{
    return "malloc_context_size=1:quarantine_size_mb=2:thread_local_quarantine_size_kb=256:max_malloc_fill_"
           "size=16";
}

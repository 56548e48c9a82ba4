// SPDX-License-Identifier: MIT
// Speed: no stacks of allocations, and what was freed is kept from reuse only for about the length of a run.
// ASAN_OPTIONS overrides this.
extern "C" const char* __asan_default_options();

const char* __asan_default_options()
{
    return "malloc_context_size=1:quarantine_size_mb=2:thread_local_quarantine_size_kb=256:max_malloc_fill_"
           "size=16";
}

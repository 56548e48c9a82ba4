// SPDX-License-Identifier: MIT
#include "tests/whole/fuzz/Target.h"

#include "tests/whole/fuzz/Log.h"
#include "tests/whole/fuzz/Resources.h"

// Required by libFuzzer.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Never destroyed, because the process exits during its work.
    static Target* const target = Target::make().release();
    static Resources resources;

    Bytes bytes(data, size);
    if (!target->accepts(bytes)) {
        return 0;
    }
    resources.beginRun();
    target->run(bytes);
    Log::clear();
    resources.endRun();
    return 0;
}

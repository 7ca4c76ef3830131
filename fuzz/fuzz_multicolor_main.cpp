// libFuzzer entry for the status board's colour file.
#include "FuzzMultiColor.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    return fuzzMultiColorCfg(data, size);
}
